#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/types.h"

namespace ports {

namespace code_page {
inline constexpr std::uint32_t active = 0;  // CP_ACP
inline constexpr std::uint32_t utf8 = 65001;
}  // namespace code_page

/// Conversions between narrow text and UTF-16, and the system's messages. A length of -1 means up to and including the
/// terminator. A destination length of 0 asks for the size. Results are counts of destination units; 0 is failure:
/// insufficient_buffer, invalid_parameter (unknown code page, length 0). Ill-formed input gives U+FFFD, as with flags
/// 0; a character that the code page lacks gives "?". Any thread.
class CodePages {
 public:
  virtual ~CodePages() = default;

  /// MultiByteToWideChar.
  [[nodiscard]] virtual std::int32_t to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                             std::int32_t source_length, wchar_t* destination,
                                             std::int32_t destination_length) = 0;

  /// WideCharToMultiByte without default character.
  [[nodiscard]] virtual std::int32_t to_narrow(std::uint32_t code_page, std::uint32_t flags, const wchar_t* source,
                                               std::int32_t source_length, char* destination,
                                               std::int32_t destination_length) = 0;

  /// FormatMessageA of the system's own messages, inserts ignored, with room for 32,767 characters: what the system
  /// says of a code, in the active code page and mostly with a line's end. Empty where it has nothing to say.
  [[nodiscard]] virtual std::string system_message(ErrorCode code) = 0;
};

}  // namespace ports
