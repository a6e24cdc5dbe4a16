#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace diagnostics {

// A log's RSA keys, from the forms that files hold them in to those that CNG takes.

/// The bytes between a PEM text's "-----BEGIN label-----" and its end line; empty where there is no such part.
[[nodiscard]] std::vector<std::uint8_t> der_in_pem(std::string_view text, std::string_view label);

inline constexpr std::string_view private_key_label = "PRIVATE KEY";
inline constexpr std::string_view public_key_label = "PUBLIC KEY";

/// BCRYPT_RSAPRIVATE_BLOB of an RSA key in PKCS #8's PrivateKeyInfo; empty where the bytes are none.
[[nodiscard]] std::vector<std::uint8_t> private_key_blob(std::span<const std::uint8_t> der);

/// BCRYPT_RSAPUBLIC_BLOB of an RSA key in X.509's SubjectPublicKeyInfo; empty where the bytes are none.
[[nodiscard]] std::vector<std::uint8_t> public_key_blob(std::span<const std::uint8_t> der);

}  // namespace diagnostics
