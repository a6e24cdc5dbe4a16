#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/script/encipher.h"
#include "host/script/script_key.h"
#include "platform/ports/script_cipher.h"

namespace support {

using Attributes = std::vector<std::pair<std::string, std::string>>;

/// Writes enciphered scripts element by element, with the build's key. Texts are plain and hold nothing that XML
/// escapes.
class ScriptText {
 public:
  explicit ScriptText(ports::ScriptCipher& cipher)
      : cipher_(cipher), key_(cipher.import_key(host::built_in_script_key())) {}
  ~ScriptText() { cipher_.destroy_key(key_); }
  ScriptText(const ScriptText&) = delete;
  ScriptText& operator=(const ScriptText&) = delete;

  [[nodiscard]] std::string cipher(const std::string& text) const { return host::encipher(cipher_, key_, text); }

  ScriptText& add(const std::string& name, const Attributes& attributes = {}) {
    elements_ += '<' + cipher(name);
    for (const auto& [attribute, value] : attributes) elements_ += ' ' + attribute + "=\"" + cipher(value) + '"';
    elements_ += "/>";
    return *this;
  }

  /// An element as it stands.
  ScriptText& add_raw(const std::string& element) {
    elements_ += element;
    return *this;
  }

  [[nodiscard]] std::string text() const {
    return "\xEF\xBB\xBF<install version=\"1.0\"><commands>" + elements_ + "</commands></install>";
  }

 private:
  ports::ScriptCipher& cipher_;
  std::uintptr_t key_;
  std::string elements_;
};

}  // namespace support
