#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace log_tool {

/// The log's private key in the file `path`, a PEM file as `ky keys new` makes it, as CNG's private key blob. Throws
/// `BadInput` with file and reason.
[[nodiscard]] std::vector<std::uint8_t> read_private_key(const std::string& path);

}  // namespace log_tool
