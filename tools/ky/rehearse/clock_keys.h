#pragma once

#include <set>
#include <string>

#include "tools/ky/script/plain_script.h"

namespace rehearsal {

/// The `int_` keys of a plain script that depend on the moment: what `GetDateTime` puts, and what `Evaluate` computes
/// from such a key, in whatever order the commands run.
[[nodiscard]] std::set<std::string> clock_keys(const script::PlainScript& script);

}  // namespace rehearsal
