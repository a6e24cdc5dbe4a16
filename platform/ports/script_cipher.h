#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/ports/types.h"

namespace ports {

/// The cipher of scripts: AES-256 in CBC mode with a zero IV and PKCS #7 padding, and base64 (RFC 4648). An engine of
/// the build: CryptoAPI or OpenSSL. Failure leaves its code in the last error.
class ScriptCipher {
 public:
  static constexpr std::size_t key_size = 32;
  static constexpr std::size_t block_size = 16;

  virtual ~ScriptCipher() = default;

  /// CryptAcquireContextW and CryptImportKey: a key for the operations below; 0 on failure.
  [[nodiscard]] virtual std::uintptr_t import_key(std::span<const std::uint8_t, key_size> bytes) = 0;
  virtual void destroy_key(std::uintptr_t key) = 0;

  /// CryptStringToBinaryW with CRYPT_STRING_BASE64: `length` characters of `text` into `into`, whose size is the limit;
  /// `size` receives the count. Fails with invalid_data, or more_data (234, as the system does) where it does not fit.
  virtual bool decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                             std::uint32_t& size) = 0;

  /// CryptDecrypt, final, in place: `size` bytes in, plain bytes out. Fails with bad_cipher_data (not whole blocks,
  /// none at all, wrong padding), bad_cipher_key. One thread at a time for one key.
  virtual bool decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) = 0;

  /// CryptEncrypt, final: the whole blocks of `plain`; empty on failure.
  [[nodiscard]] virtual std::vector<std::uint8_t> encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) = 0;
};

/// An RSA pair in DER: PKCS #8 PrivateKeyInfo and X.509 SubjectPublicKeyInfo.
struct RsaPair {
  std::vector<std::uint8_t> private_key;
  std::vector<std::uint8_t> public_key;
};

/// Fresh keys. An engine of the build.
class KeyMaker {
 public:
  virtual ~KeyMaker() = default;

  /// Bytes of the system's random generator.
  [[nodiscard]] virtual bool random(std::span<std::uint8_t> into) = 0;

  /// An RSA pair with public exponent 65537.
  [[nodiscard]] virtual bool rsa_pair(std::uint32_t bits, RsaPair& out) = 0;
};

}  // namespace ports
