#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

/// Base64 with padding, on one line.
[[nodiscard]] std::string base64_from(std::span<const std::uint8_t> bytes);

/// Nothing where the text is not exactly what `base64_from` writes.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> bytes_from_base64(std::string_view text);

}  // namespace machine
