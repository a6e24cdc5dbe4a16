#pragma once

#include <cstdint>
#include <span>

#include "platform/ports/status.h"
#include "platform/ports/types.h"

namespace ports {

enum class CngAlgorithm : std::uintptr_t { null = 0 };
enum class CngKey : std::uintptr_t { null = 0 };

/// Flags of `Cng::encrypt` and `decrypt`.
namespace cng_padding {
inline constexpr std::uint32_t none = 0;   // whole blocks; of `decrypt` with a symmetric key alone
inline constexpr std::uint32_t block = 1;  // BCRYPT_BLOCK_PADDING: PKCS #7
inline constexpr std::uint32_t pkcs1 = 2;  // BCRYPT_PAD_PKCS1: RSA, PKCS #1 v1.5
}  // namespace cng_padding

/// Cryptography with the calls and statuses of CNG (bcrypt.dll). An engine of the build: CNG or OpenSSL, which knows
/// "RNG", "RSA", and of symmetric algorithms "AES" (128, 192, 256 bits) and "3DES" (192 bits), in CBC mode. Any thread;
/// one key may be used by several at once. Which failing status comes is the engine's own but where it is told.
class Cng {
 public:
  virtual ~Cng() = default;

  /// BCryptOpenAlgorithmProvider, Microsoft's implementation, no flags. Fails for an identifier that is not known.
  [[nodiscard]] virtual Status open_algorithm(const wchar_t* identifier, CngAlgorithm& out) = 0;
  /// BCryptCloseAlgorithmProvider. Of null it does nothing.
  virtual void close_algorithm(CngAlgorithm algorithm) = 0;

  /// BCryptGenRandom with the provider "RNG".
  [[nodiscard]] virtual Status random(CngAlgorithm rng, std::span<std::uint8_t> into) = 0;

  /// BCryptGenerateSymmetricKey. Fails for a size that the algorithm has not; of more than its longest key it takes the
  /// beginning.
  [[nodiscard]] virtual Status generate_key(CngAlgorithm algorithm, std::span<const std::uint8_t> secret,
                                            CngKey& out) = 0;
  /// BCryptImportKeyPair of a "PUBLICBLOB" (BCRYPT_RSAPUBLIC_BLOB) and of a "RSAPRIVATEBLOB" (BCRYPT_RSAPRIVATE_BLOB).
  /// Fails for bytes that are no such blob.
  [[nodiscard]] virtual Status import_public_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob, CngKey& out) = 0;
  [[nodiscard]] virtual Status import_private_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                                  CngKey& out) = 0;
  /// BCryptDestroyKey. Of null it does nothing.
  virtual void destroy_key(CngKey key) = 0;

  /// BCryptGetProperty, "BlockLength", in bytes: of an RSA key its modulus's length.
  [[nodiscard]] virtual Status block_length(CngKey key, std::uint32_t& out) = 0;

  /// BCryptExportKey as "KeyDataBlob": magic, version and length, 32 bits each, and the key's bytes. With an empty
  /// `into` it tells the size and succeeds.
  [[nodiscard]] virtual Status export_key(CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) = 0;

  /// BCryptEncrypt: all of `plain` as one message. `iv` has a block's length and need not keep its value; an RSA key
  /// does not look at it. With an empty `into` it tells the size that is needed; a smaller one fails with
  /// buffer_too_small. A symmetric key takes cng_padding::block, an RSA key cng_padding::pkcs1.
  [[nodiscard]] virtual Status encrypt(CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                                       std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) = 0;

  /// BCryptDecrypt, the inverse, also in place. `into` has the cipher's length; with an empty one it tells a size that
  /// is enough. Fails where the padding is wrong or the length is no whole number of blocks. With cng_padding::none a
  /// symmetric key deciphers all blocks and leaves what may be padding in place. An RSA key that is not the right one
  /// fails or gives other bytes.
  [[nodiscard]] virtual Status decrypt(CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                                       std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) = 0;

  /// The Windows error code of a status, by GetOverlappedResult without a file. The last error stays what it was.
  [[nodiscard]] virtual ErrorCode error_of(Status status) = 0;
};

}  // namespace ports
