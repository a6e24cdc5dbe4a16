#include "tools/ky/log/message_scan.h"

#include <limits>

namespace log_tool {

namespace {

/// A digit's value, or `base` for what is none.
std::int64_t digit(wchar_t unit, std::int64_t base) {
  if (is_digit(unit)) return unit - L'0';
  const wchar_t lower = unit | 0x20;
  return base == 16 && lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : base;
}

/// Takes all digits at the front; nothing where there are none or their value is more than 32 bits.
std::optional<std::int64_t> take_digits(std::wstring_view& text, std::int64_t base) {
  constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
  std::int64_t value = 0;
  std::size_t at = 0;
  for (; at < text.size() && digit(text[at], base) < base; ++at) {
    value = value > most ? value : value * base + digit(text[at], base);
  }
  text.remove_prefix(at);
  return at == 0 || value > most ? std::nullopt : std::optional(value);
}

}  // namespace

std::wstring_view without_trailing_space(std::wstring_view text) {
  return text.substr(0, text.find_last_not_of(L" \t\r\n") + 1);
}

void skip_blanks(std::wstring_view& text) {
  while (text.starts_with(L' ')) text.remove_prefix(1);
}

std::wstring_view take_word(std::wstring_view& text) {
  std::size_t size = 0;
  while (size < text.size() && is_word(text[size])) ++size;
  const std::wstring_view word = text.substr(0, size);
  text.remove_prefix(size);
  return word;
}

std::optional<std::int32_t> take_index(std::wstring_view& text) {
  std::wstring_view rest = text;
  const bool negative = rest.starts_with(L'-');
  if (negative) rest.remove_prefix(1);
  const auto digits = take_digits(rest, 10);
  if (!digits || *digits > std::int64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0)) {
    return std::nullopt;
  }
  text = rest;
  return static_cast<std::int32_t>(negative ? -*digits : *digits);
}

std::optional<std::int64_t> take_code(std::wstring_view& text) {
  const bool negative = text.starts_with(L'-');
  if (negative) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with(L"0x") || text.starts_with(L"0X");
  if (hexadecimal) text.remove_prefix(2);
  const auto value = take_digits(text, hexadecimal ? 16 : 10);
  if (!value || (!text.empty() && is_word(text.front()))) return std::nullopt;
  return negative ? -*value : *value;
}

}  // namespace log_tool
