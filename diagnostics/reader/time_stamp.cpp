#include "diagnostics/reader/time_stamp.h"

#include <chrono>

#include "diagnostics/log_format.h"

namespace diagnostics::reader {

namespace {

constexpr std::string_view pattern = "[00:00:00:000] ";
static_assert(pattern.size() == log_format::time_stamp_length);

/// `unit(i)` is the i-th character of a text that is long enough.
template <class Unit>
std::optional<std::uint32_t> parse(Unit unit) {
  std::uint32_t fields[4] = {};
  std::size_t field = 0;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::uint32_t got = unit(i);
    if (pattern[i] != '0') {
      if (got != static_cast<unsigned char>(pattern[i])) return std::nullopt;
      if (pattern[i] == ':') ++field;
    } else {
      if (got < '0' || got > '9') return std::nullopt;
      fields[field] = fields[field] * 10 + (got - '0');
    }
  }
  if (fields[0] > 23 || fields[1] > 59 || fields[2] > 59) return std::nullopt;
  return ((fields[0] * 60 + fields[1]) * 60 + fields[2]) * 1000 + fields[3];
}

/// Reads a number of 1 to `digits` digits off the front; nothing where there is none.
std::optional<std::uint32_t> take_number(std::wstring_view& text, std::size_t digits) {
  std::uint64_t value = 0;
  std::size_t taken = 0;
  for (; taken < digits && taken < text.size() && text[taken] >= L'0' && text[taken] <= L'9'; ++taken) {
    value = value * 10 + static_cast<std::uint64_t>(text[taken] - L'0');
  }
  text.remove_prefix(taken);
  if (taken == 0 || value > 0xFFFFFFFF) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

bool take(std::wstring_view& text, std::wstring_view part) {
  if (!text.starts_with(part)) return false;
  text.remove_prefix(part.size());
  return true;
}

/// "dd.mm.yyyy"
std::optional<std::int32_t> day_of(std::wstring_view text) {
  const auto day = take_number(text, 2);
  if (!day || !take(text, L".")) return std::nullopt;
  const auto month = take_number(text, 2);
  if (!month || !take(text, L".")) return std::nullopt;
  const auto year = take_number(text, 4);
  if (!year) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)), std::chrono::month(*month),
                                         std::chrono::day(*day)};
  if (!date.ok()) return std::nullopt;
  return static_cast<std::int32_t>(std::chrono::sys_days(date).time_since_epoch().count());
}

}  // namespace

std::optional<std::uint32_t> time_of(std::string_view text) {
  if (text.size() < pattern.size()) return std::nullopt;
  return parse([&](std::size_t i) { return std::uint32_t{static_cast<unsigned char>(text[i])}; });
}

std::optional<std::uint32_t> time_of(std::span<const std::uint8_t> utf16) {
  if (utf16.size() < 2 * pattern.size()) return std::nullopt;
  return parse([&](std::size_t i) { return std::uint32_t{utf16[2 * i]} | std::uint32_t{utf16[2 * i + 1]} << 8; });
}

std::size_t find_time(std::string_view text) {
  for (std::size_t at = text.find('['); at != std::string_view::npos; at = text.find('[', at + 1)) {
    if (time_of(text.substr(at))) return at;
  }
  return std::string_view::npos;
}

std::optional<ThreadStart> thread_start(std::wstring_view message) {
  constexpr std::string_view begin = log_format::first_record_begin;
  if (!take(message, std::wstring(begin.begin(), begin.end()))) return std::nullopt;
  const auto thread = take_number(message, 10);
  if (!thread) return std::nullopt;
  ThreadStart start{*thread, std::nullopt};
  // The description before it may hold anything.
  constexpr std::wstring_view before_date = L" on ";
  const std::size_t at = message.rfind(before_date);
  if (at != std::wstring_view::npos) start.day = day_of(message.substr(at + before_date.size()));
  return start;
}

Date date_of(std::int32_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
  return {static_cast<int>(date.year()), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day())};
}

}  // namespace diagnostics::reader
