#pragma once

#include <cstdint>
#include <span>

namespace diagnostics {

/// The public half of the build's log key as a BCRYPT_RSAPUBLIC_BLOB of 155 bytes: whoever has the private half reads
/// this build's logs.
[[nodiscard]] std::span<const std::uint8_t> log_public_key();

}  // namespace diagnostics
