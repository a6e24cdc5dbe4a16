#include "tools/ky/script/text_cipher.h"

#include "host/script/encipher.h"
#include "tools/ky/bad_input.h"

namespace script {

TextCipher::TextCipher(ports::ScriptCipher& cipher, const host::ScriptKey& key)
    : cipher_(cipher), key_(cipher.import_key(key)) {
  if (key_ == 0) throw workbench::BadInput("the cipher does not take the script key");
}

std::string TextCipher::encipher(std::string_view plain) const {
  std::string text = host::encipher(cipher_, key_, plain);
  if (text.empty()) throw workbench::BadInput("the cipher does not encipher with the script key");
  return text;
}

}  // namespace script
