#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tools/ky/rehearse/noting_cng.h"
#include "tools/ky/rehearse/outcome.h"

namespace diagnostics::reader {
class KeyOpener;
}

namespace rehearsal {

/// The paths of the files that the run's own log lies in, as the run knew them; UTF-8.
[[nodiscard]] std::vector<std::string> own_logs(const Outcome& outcome);

/// The last part of a Windows path.
[[nodiscard]] std::string file_name_of(const std::string& path);

/// Lets `keys` open what was sealed through `cng`, which is the run's alone.
void know_keys_of(const NotingCng& cng, diagnostics::reader::KeyOpener& keys);

/// Log files on the desk as text, one timeline; what cannot be read is told on `err`. Nothing where there is no file.
/// Without `keys` sealed files stay closed.
[[nodiscard]] std::optional<std::string> clear_text_of(const std::vector<std::string>& files,
                                                       const diagnostics::reader::KeyOpener* keys, std::ostream& err);

}  // namespace rehearsal
