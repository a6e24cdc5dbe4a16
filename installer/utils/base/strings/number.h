#pragma once

#include <cstdint>

namespace base::strings {

/// wcstol with base 0 and a 32-bit long: "0x" and a leading "0" change the radix, text that is no number gives 0, what
/// follows a number is not looked at, and what does not fit saturates.
[[nodiscard]] std::int32_t to_integer(const wchar_t* text);

/// _wtol: the same in decimal alone.
[[nodiscard]] std::int32_t to_decimal(const wchar_t* text);

}  // namespace base::strings
