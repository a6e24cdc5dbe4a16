#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace workbench {

/// The workbench: does what `arguments` (UTF-8, without the program's name) ask for and gives the exit code. 0 is
/// success, 1 refused input or a run that failed, 2 wrong usage.
[[nodiscard]] int run_ky(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace workbench
