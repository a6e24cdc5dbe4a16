#pragma once

#include <string>
#include <string_view>

namespace base::strings {

/// UTF-16 code units of UTF-8 text. Each maximal ill-formed sequence becomes one U+FFFD, as the system's conversion does.
[[nodiscard]] std::wstring to_wide(std::string_view utf8);

/// UTF-8 of UTF-16 code units. An unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string to_utf8(std::wstring_view wide);

/// True when the bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool is_utf8(std::string_view bytes);

}  // namespace base::strings
