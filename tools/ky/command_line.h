#pragma once

#include <string>
#include <variant>
#include <vector>

#include "tools/ky/options.h"

namespace workbench {

/// A command line that asks for no work: for help or the version (exit code 0, `text` belongs to the output), or wrong
/// usage (exit code 2, `text` is one clear line and a hint, for the error stream).
struct Usage {
  int exit_code = 0;
  std::string text;
};

/// What `arguments` (UTF-8, without the program's name) ask for. What follows "--" is handed to the script as switches.
[[nodiscard]] std::variant<Options, Usage> parse_command_line(const std::vector<std::string>& arguments);

}  // namespace workbench
