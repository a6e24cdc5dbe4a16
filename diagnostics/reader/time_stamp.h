#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace diagnostics::reader {

inline constexpr std::uint32_t day_length = 24U * 60 * 60 * 1000;  // milliseconds

/// The milliseconds since midnight that "[hh:mm:ss:mmm] " tells; nothing where the text does not begin so.
[[nodiscard]] std::optional<std::uint32_t> time_of(std::string_view text);
/// The same of UTF-16, little endian.
[[nodiscard]] std::optional<std::uint32_t> time_of(std::span<const std::uint8_t> utf16);

/// Where in `text` such a stamp begins; `npos` where none does.
[[nodiscard]] std::size_t find_time(std::string_view text);

/// What a thread's first record tells.
struct ThreadStart {
  std::uint32_t thread = 0;
  std::optional<std::int32_t> day;  // since 1970-01-01
};
/// Nothing where the message is no such record.
[[nodiscard]] std::optional<ThreadStart> thread_start(std::wstring_view message);

/// A day since 1970-01-01 in the calendar.
struct Date {
  std::int32_t year = 1970;
  std::uint32_t month = 1;
  std::uint32_t day = 1;
};
[[nodiscard]] Date date_of(std::int32_t day);

}  // namespace diagnostics::reader
