#include "host/script/encipher.h"

#include <vector>

#include "installer/utils/base/strings/base64.h"
#include "platform/ports/script_cipher.h"

namespace host {

std::string encipher(ports::ScriptCipher& cipher, std::uintptr_t key, std::string_view utf8) {
  const std::vector<std::uint8_t> plain(utf8.begin(), utf8.end());
  const std::vector<std::uint8_t> bytes = cipher.encrypt(key, plain);
  if (bytes.empty()) return {};
  std::string form = '_' + base::strings::encode_base64(bytes);
  for (char& c : form) {
    if (c == '+') c = '-';
    if (c == '/') c = '_';
    if (c == '=') c = '.';
  }
  return form;
}

}  // namespace host
