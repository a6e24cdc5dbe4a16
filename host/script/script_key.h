#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ports/script_cipher.h"

namespace host {

/// The key that scripts are enciphered with.
using ScriptKey = std::array<std::uint8_t, ports::ScriptCipher::key_size>;

inline constexpr std::string_view script_key_begin = "-----BEGIN KY SCRIPT KEY-----";
inline constexpr std::string_view script_key_end = "-----END KY SCRIPT KEY-----";

/// Reads a key file's text: the first line `script_key_begin`, base64 of 32 bytes over one or more lines, then
/// `script_key_end`; lines end in LF or CRLF and nothing but blank lines stands around them. Gives the empty string, or
/// the reason why it is no key.
[[nodiscard]] std::string parse_script_key(std::string_view text, ScriptKey& out);

/// The text of a key file.
[[nodiscard]] std::string format_script_key(const ScriptKey& key);

/// The key that this build was configured with.
[[nodiscard]] const ScriptKey& built_in_script_key();

}  // namespace host
