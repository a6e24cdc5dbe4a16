#pragma once

#include <cstdint>
#include <span>

#include "platform/ports/script_cipher.h"

namespace win32 {

/// Turns CryptoAPI's private key blob of an RSA key into its two DER forms. False where the blob is no such key.
[[nodiscard]] bool rsa_pair_from_blob(std::span<const std::uint8_t> blob, ports::RsaPair& out);

}  // namespace win32
