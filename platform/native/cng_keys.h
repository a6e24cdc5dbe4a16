#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/native/cipher_contexts.h"
#include "platform/ports/cng.h"

namespace native {

/// A key behind a `CngKey`; its operations are those of `ports::Cng`.
class CngKeyObject {
 public:
  virtual ~CngKeyObject() = default;
  [[nodiscard]] virtual std::uint32_t block_length() const = 0;
  [[nodiscard]] virtual ports::Status export_to(std::span<std::uint8_t> into, std::uint32_t& size) const = 0;
  [[nodiscard]] virtual ports::Status encrypt(std::span<const std::uint8_t> plain, std::span<const std::uint8_t> iv,
                                              std::span<std::uint8_t> into, std::uint32_t& size,
                                              std::uint32_t padding) = 0;
  [[nodiscard]] virtual ports::Status decrypt(std::span<const std::uint8_t> cipher, std::span<const std::uint8_t> iv,
                                              std::span<std::uint8_t> into, std::uint32_t& size,
                                              std::uint32_t padding) = 0;
};

/// The key of a block cipher in CBC mode.
class BlockKey final : public CngKeyObject {
 public:
  /// `secret` has the cipher's key at its beginning.
  BlockKey(const EVP_CIPHER* cipher, std::span<const std::uint8_t> secret);
  ~BlockKey() override;

  [[nodiscard]] std::uint32_t block_length() const override { return block_length_; }
  [[nodiscard]] ports::Status export_to(std::span<std::uint8_t> into, std::uint32_t& size) const override;
  [[nodiscard]] ports::Status encrypt(std::span<const std::uint8_t> plain, std::span<const std::uint8_t> iv,
                                      std::span<std::uint8_t> into, std::uint32_t& size,
                                      std::uint32_t padding) override;
  [[nodiscard]] ports::Status decrypt(std::span<const std::uint8_t> cipher, std::span<const std::uint8_t> iv,
                                      std::span<std::uint8_t> into, std::uint32_t& size,
                                      std::uint32_t padding) override;

 private:
  [[nodiscard]] ports::Status turn(CipherContexts& contexts, std::span<const std::uint8_t> from,
                                   std::span<const std::uint8_t> iv, std::uint8_t* to, std::uint32_t& size) const;

  const std::uint32_t block_length_;
  std::vector<std::uint8_t> secret_;
  CipherContexts encrypting_;
  CipherContexts decrypting_;
  CipherContexts decrypting_bare_;
};

/// The cipher of an algorithm with a key of so many bytes, or of its longest; null where it has none.
[[nodiscard]] const EVP_CIPHER* aes_of(std::size_t key_size);
[[nodiscard]] const EVP_CIPHER* triple_des_of(std::size_t key_size);

/// An RSA key from its blob; null where that is none.
[[nodiscard]] std::unique_ptr<CngKeyObject> rsa_public_key(std::span<const std::uint8_t> blob);
[[nodiscard]] std::unique_ptr<CngKeyObject> rsa_private_key(std::span<const std::uint8_t> blob);

}  // namespace native
