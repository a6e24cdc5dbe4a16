#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base::strings {

/// UTF-16 code units of UTF-8 text. Each maximal ill-formed sequence becomes one U+FFFD, as the system's conversion
/// does.
[[nodiscard]] std::wstring to_wide(std::string_view utf8);
/// The same into `out`, whose memory is used again.
void to_wide(std::string_view utf8, std::wstring& out);
/// The same to `out`, which has room for as many units as there are bytes; gives the count of units.
[[nodiscard]] std::size_t to_wide(std::string_view utf8, wchar_t* out);

/// UTF-8 of UTF-16 code units. An unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string to_utf8(std::wstring_view wide);
/// The same to `out`, which has room for three bytes a unit; gives the count of bytes.
[[nodiscard]] std::size_t to_utf8(std::wstring_view wide, char* out);

/// True when the bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool is_utf8(std::string_view bytes);
/// Where the first byte stands that is not; nothing when all is well-formed.
[[nodiscard]] std::optional<std::size_t> first_ill_formed(std::string_view bytes);

/// True when every surrogate has its partner.
[[nodiscard]] bool is_utf16(std::wstring_view wide);

}  // namespace base::strings
