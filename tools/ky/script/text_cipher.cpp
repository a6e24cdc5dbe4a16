#include "tools/ky/script/text_cipher.h"

#include <span>
#include <vector>

#include "host/script/base64.h"
#include "tools/ky/bad_input.h"

namespace script {

TextCipher::TextCipher(ports::ScriptCipher& cipher, const host::ScriptKey& key)
    : cipher_(cipher), key_(cipher.import_key(key)) {
  if (key_ == 0) throw workbench::BadInput("the cipher does not take the script key");
}

std::string TextCipher::encipher(std::string_view plain) const {
  const std::vector<std::uint8_t> bytes(plain.begin(), plain.end());
  const std::vector<std::uint8_t> enciphered = cipher_.encrypt(key_, bytes);
  if (enciphered.empty()) throw workbench::BadInput("the cipher does not encipher with the script key");
  std::string text = "_" + host::encode_base64(enciphered);
  for (char& c : text) {
    if (c == '+') c = '-';
    if (c == '/') c = '_';
    if (c == '=') c = '.';
  }
  return text;
}

}  // namespace script
