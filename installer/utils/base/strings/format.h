#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>

namespace base::strings {

/// Formats with Microsoft's printf rules, the same in both builds: `%i %d %u %x %X %c %s %S %hs %ls %%` with flags,
/// width and precision; `l` means 32 bits and `I64` 64. In the wide family `%s` is wide and `%S` narrow, each byte
/// widened by itself; in the narrow family it is the other way round, and a wide text ends at its first unit above
/// 0xFF. A null string is "(null)". `arguments` is read from a copy.
[[nodiscard]] std::wstring format_v(const wchar_t* format, std::va_list arguments);
[[nodiscard]] std::string format_v(const char* format, std::va_list arguments);

/// Turns an argument into what its conversion reads. Anything else does not compile.
inline std::int32_t format_argument(std::int32_t value) {
  return value;
}
inline std::uint32_t format_argument(std::uint32_t value) {
  return value;
}
inline std::int64_t format_argument(std::int64_t value) {
  return value;
}
inline std::uint64_t format_argument(std::uint64_t value) {
  return value;
}
inline std::int32_t format_argument(bool value) {
  return value ? 1 : 0;
}
inline const wchar_t* format_argument(const wchar_t* value) {
  return value;
}
inline const char* format_argument(const char* value) {
  return value;
}

namespace detail {
[[nodiscard]] std::wstring format_arguments(const wchar_t* format, ...);
[[nodiscard]] std::string format_arguments(const char* format, ...);
}  // namespace detail

/// The same with arguments in place: integers of 32 or 64 bits, bool, narrow and wide strings.
template <class Character, class... Arguments>
[[nodiscard]] auto format(const Character* text, Arguments... arguments) {
  return detail::format_arguments(text, format_argument(arguments)...);
}

}  // namespace base::strings
