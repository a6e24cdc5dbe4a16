#pragma once

#include "platform/ports/script_cipher.h"
#include "platform/win32/crypto_provider.h"

namespace win32 {

/// Fresh keys from CryptoAPI.
class KeyMaker final : public ports::KeyMaker {
 public:
  explicit KeyMaker(ports::Errors& errors) : errors_(errors), provider_(errors) {}

  bool random(std::span<std::uint8_t> into) override;
  bool rsa_pair(std::uint32_t bits, ports::RsaPair& out) override;

 private:
  ports::Errors& errors_;
  CryptoProvider provider_;
};

}  // namespace win32
