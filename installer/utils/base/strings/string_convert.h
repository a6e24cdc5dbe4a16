#pragma once

#include <string>

namespace base::strings {

/// Conversions by the system's code-page calls, code page 65001 and flags 0, up to the terminator. A null text fails
/// the assertion on "s" and stops the process; any failure of the calls gives the empty string.
[[nodiscard]] std::string wide_to_utf8(const wchar_t* s);
[[nodiscard]] std::wstring utf8_to_wide(const char* s);

/// Text in the active code page, the form of narrow attribute values; false and the last error on failure.
[[nodiscard]] bool to_active_code_page(const wchar_t* text, std::string& out);

}  // namespace base::strings
