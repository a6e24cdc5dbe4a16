#pragma once

#include <iosfwd>

#include "host/script/script_key.h"
#include "tools/ky/options.h"

namespace check {

/// `ky script check`: prints what it finds in the files, or the rules, and gives the exit code: 1 where a file has an
/// error or cannot be read, which is told on `err`, else 0.
[[nodiscard]] int check_files(const workbench::ScriptCheckOptions& options, const host::ScriptKey& key,
                              std::ostream& out, std::ostream& err);

}  // namespace check
