#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace base::strings {

/// Base64 (RFC 4648) with its padding, without line ends.
[[nodiscard]] std::string encode_base64(std::span<const std::uint8_t> bytes);

/// The number of bytes decoded into `into`. Nothing where `text` is not whole, padded, canonical base64 or does not
/// fit.
[[nodiscard]] std::optional<std::size_t> decode_base64(std::string_view text, std::span<std::uint8_t> into);

/// The same into bytes of their own, however many.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> decode_base64(std::string_view text);

}  // namespace base::strings
