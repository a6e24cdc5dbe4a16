#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace log_tool {

// Taking messages apart from their front. ASCII only: what a message says of itself is in it.

[[nodiscard]] constexpr bool is_digit(wchar_t unit) {
  return unit >= L'0' && unit <= L'9';
}
/// What names and words are made of.
[[nodiscard]] constexpr bool is_word(wchar_t unit) {
  return is_digit(unit) || (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z') || unit == L'_';
}

[[nodiscard]] std::wstring_view without_trailing_space(std::wstring_view text);

void skip_blanks(std::wstring_view& text);

/// Takes the word at the front; empty where there is none.
[[nodiscard]] std::wstring_view take_word(std::wstring_view& text);

/// Takes a number of 32 bits at the front, as "%i" writes it. Nothing, and nothing taken, where there is none.
[[nodiscard]] std::optional<std::int32_t> take_index(std::wstring_view& text);

/// Takes a number at the front, also in the form "0x80070005". Nothing where it does not fit or where a word goes on
/// behind it.
[[nodiscard]] std::optional<std::int64_t> take_code(std::wstring_view& text);

}  // namespace log_tool
