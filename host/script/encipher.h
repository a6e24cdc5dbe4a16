#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ports {
class ScriptCipher;
}

namespace host {

/// Longest name or value of a script in bytes of UTF-8: with its padding it is the most that a Decrypter's buffers
/// take.
inline constexpr std::size_t longest_plain_value = 367;

/// The ciphered form of a name or value: "_" and URL-safe base64 with "." for "=". Equal text gives equal form. Empty
/// where the cipher fails. `key` is an imported key of `cipher`.
[[nodiscard]] std::string encipher(ports::ScriptCipher& cipher, std::uintptr_t key, std::string_view utf8);

}  // namespace host
