#pragma once

#include <iosfwd>

#include "tools/ky/options.h"

namespace workbench {

/// `ky run`: runs a script for real and prints the summary; Windows only. Writes result.json, and log.txt where the
/// log's private key is given: without it a run's log never reaches the disk in the clear. The exit code is as in
/// `rehearse`; where the script stops the process, the files are written first and the process then ends by its fault.
[[nodiscard]] int run(const RunOptions& options, std::ostream& out, std::ostream& err);

}  // namespace workbench
