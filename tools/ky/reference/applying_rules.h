#pragma once

#include <string_view>
#include <vector>

#include "host/script/command_schema.h"

namespace reference {

/// The rules of `ky script check` that this command's attributes can offend against, sorted by name. Those that any
/// element can offend against are not among them.
[[nodiscard]] std::vector<std::string_view> applying_rules(const host::CommandSchema& command);

}  // namespace reference
