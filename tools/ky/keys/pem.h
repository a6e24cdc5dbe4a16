#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace keys {

/// The textual form of a key (RFC 7468): `label` in its first and last line, base64 of `der` between them.
[[nodiscard]] std::string format_pem(std::string_view label, std::span<const std::uint8_t> der);

}  // namespace keys
