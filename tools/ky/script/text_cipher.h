#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/script/script_key.h"
#include "platform/ports/script_cipher.h"

namespace script {

/// Enciphers names and values with one key.
class TextCipher {
 public:
  /// `cipher` outlives this object. Throws `BadInput` where the engine does not take the key.
  TextCipher(ports::ScriptCipher& cipher, const host::ScriptKey& key);
  ~TextCipher() { cipher_.destroy_key(key_); }
  TextCipher(const TextCipher&) = delete;
  TextCipher& operator=(const TextCipher&) = delete;

  /// "_" and URL-safe base64 with "." for "=". Equal text gives equal text. Throws `BadInput` where the engine fails.
  [[nodiscard]] std::string encipher(std::string_view plain) const;

  [[nodiscard]] ports::ScriptCipher& engine() const { return cipher_; }
  [[nodiscard]] std::uintptr_t key() const { return key_; }

 private:
  ports::ScriptCipher& cipher_;
  std::uintptr_t key_;
};

}  // namespace script
