#include "tools/ky/keys/pem.h"

#include "installer/utils/base/strings/base64.h"

namespace keys {

std::string format_pem(std::string_view label, std::span<const std::uint8_t> der) {
  constexpr std::size_t width = 64;
  const std::string digits = base::strings::encode_base64(der);
  std::string text = "-----BEGIN " + std::string(label) + "-----\n";
  for (std::size_t at = 0; at < digits.size(); at += width) text += digits.substr(at, width) + '\n';
  return text + "-----END " + std::string(label) + "-----\n";
}

}  // namespace keys
