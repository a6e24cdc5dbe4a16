#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <unordered_map>

namespace ports {
class ScriptCipher;
}

namespace host {

/// A ciphered name or value, or the reason why it is none.
struct Deciphered {
  /// Null where the text is good.
  const char* fault = nullptr;
  /// The plain text, UTF-8; it lies in the decipherer.
  std::string_view plain;
};

/// Deciphers and checks the names and values of one script. Equal text is deciphered once, since a script says the same
/// things over and over. The form is stricter than what a command's load takes: whatever passes here is safe there.
class Decipherer {
 public:
  /// `key` is an imported key of `cipher`; both outlive this object.
  Decipherer(ports::ScriptCipher& cipher, std::uintptr_t key) : cipher_(cipher), key_(key) { known_.reserve(1024); }
  Decipherer(const Decipherer&) = delete;
  Decipherer& operator=(const Decipherer&) = delete;

  /// The result lives as long as this object.
  [[nodiscard]] const Deciphered& decipher(std::wstring_view ciphered);

 private:
  /// What a Decrypter's buffers hold, the terminator included.
  static constexpr std::size_t capacity = 512;
  static constexpr std::size_t first_memory = 64 * 1024;

  /// The last block depends on all that stands before it and is as good as random, so the text's last digits, side by
  /// side, will do.
  struct Hash {
    std::size_t operator()(std::wstring_view text) const {
      std::uint64_t digits = 0;
      for (const wchar_t unit : text.substr(text.size() - std::min<std::size_t>(text.size(), 8))) {
        digits = digits << 8 ^ static_cast<std::uint64_t>(unit);
      }
      return static_cast<std::size_t>(digits);
    }
  };

  [[nodiscard]] Deciphered decipher_anew(std::wstring_view ciphered);

  ports::ScriptCipher& cipher_;
  std::uintptr_t key_;
  // Texts and their entries are many and small, and all go together.
  std::pmr::monotonic_buffer_resource memory_{first_memory};
  std::pmr::unordered_map<std::wstring_view, Deciphered, Hash> known_{&memory_};
};

}  // namespace host
