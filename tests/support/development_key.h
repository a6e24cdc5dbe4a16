#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/rsa_blob.h"
#include "platform/desk/desk.h"

namespace support {

/// The bytes of a key that development builds have.
[[nodiscard]] inline std::vector<std::uint8_t> development_key(const char* name, std::string_view label) {
  std::string text;
  const std::string failure = desk::read_file(KY_SOURCE_FOLDER "/keys/development/" + std::string(name), 10'000, text);
  if (!failure.empty()) throw std::runtime_error(failure);
  return diagnostics::der_in_pem(text, label);
}
[[nodiscard]] inline std::vector<std::uint8_t> log_public_key() {
  return diagnostics::public_key_blob(development_key("log-public.pem", diagnostics::public_key_label));
}
[[nodiscard]] inline std::vector<std::uint8_t> log_private_key() {
  return diagnostics::private_key_blob(development_key("log-private.pem", diagnostics::private_key_label));
}

}  // namespace support
