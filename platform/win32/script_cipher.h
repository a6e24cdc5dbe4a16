#pragma once

#include "platform/ports/script_cipher.h"
#include "platform/win32/crypto_provider.h"

namespace win32 {

/// The script cipher on CryptoAPI.
class ScriptCipher final : public ports::ScriptCipher {
 public:
  explicit ScriptCipher(ports::Errors& errors) : errors_(errors), provider_(errors) {}

  std::uintptr_t import_key(std::span<const std::uint8_t, key_size> bytes) override;
  void destroy_key(std::uintptr_t key) override;
  bool decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                     std::uint32_t& size) override;
  bool decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) override;
  std::vector<std::uint8_t> encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) override;

 private:
  ports::Errors& errors_;
  CryptoProvider provider_;
};

}  // namespace win32
