#pragma once

#include <string>
#include <vector>

#include "platform/ports/script_cipher.h"

namespace keys {

/// The modulus of the log's keys: the sealed log's form holds one of this size.
inline constexpr std::uint32_t log_key_bits = 1024;

/// Writes a fresh `script.key`, `log-private.pem` (PKCS #8) and `log-public.pem` (SubjectPublicKeyInfo) into `folder`,
/// which is made where it is missing. Secret files are for their owner alone. Gives their paths. Throws `BadInput`, and
/// nothing new is left behind, where one of them exists or something fails.
[[nodiscard]] std::vector<std::string> make_new_keys(const std::string& folder, ports::KeyMaker& key_maker);

}  // namespace keys
