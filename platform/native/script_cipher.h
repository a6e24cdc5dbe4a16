#pragma once

#include <openssl/evp.h>

#include <map>
#include <memory>

#include "platform/ports/script_cipher.h"
#include "platform/ports/system.h"

namespace native {

/// The script's cipher and fresh keys by OpenSSL.
class OpensslCipher final : public ports::ScriptCipher {
 public:
  explicit OpensslCipher(ports::Errors& errors) : errors_(errors) {}

  std::uintptr_t import_key(std::span<const std::uint8_t, key_size> bytes) override;
  void destroy_key(std::uintptr_t key) override;
  bool decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                     std::uint32_t& size) override;
  bool decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) override;
  std::vector<std::uint8_t> encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) override;

 private:
  struct ContextDeleter {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  };
  using Context = std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter>;
  /// A key's schedule for both ways; a message sets the IV back and nothing else.
  struct Key {
    Context decrypting;
    Context encrypting;
  };

  [[nodiscard]] bool fail(ports::ErrorCode code) {
    errors_.set_last(code);
    return false;
  }

  ports::Errors& errors_;
  std::map<std::uintptr_t, std::unique_ptr<Key>> keys_;
};

class OpensslKeyMaker final : public ports::KeyMaker {
 public:
  bool random(std::span<std::uint8_t> into) override;
  bool rsa_pair(std::uint32_t bits, ports::RsaPair& out) override;
};

}  // namespace native
