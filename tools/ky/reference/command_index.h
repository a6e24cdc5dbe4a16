#pragma once

#include <string>

namespace reference {

/// The page that leads to all commands and tells what they have in common.
[[nodiscard]] std::string command_index();

}  // namespace reference
