#pragma once

#include <cstdint>
#include <span>

namespace diagnostics::reader {

/// The number in the first four bytes, which are there.
[[nodiscard]] inline std::uint32_t little_endian(std::span<const std::uint8_t> bytes) {
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

}  // namespace diagnostics::reader
