#pragma once

#include <iosfwd>

#include "tools/ky/options.h"

namespace workbench {

/// `ky rehearse`: runs a script on a copy of the machine, prints the summary and writes result.json, log.txt and
/// machine.json. The summary ends with the receipt, which `--receipt` writes. Gives the exit
/// code: 3 where something that the script was to remove is still there, else 0 when the script ended with return code
/// 0, else 1. Throws `BadInput` where the machine or script is refused; nothing has run then. Where the script stops
/// the process, everything is written and the process ends with exit code 1.
[[nodiscard]] int rehearse(const RehearseOptions& options, std::ostream& out, std::ostream& err);

}  // namespace workbench
