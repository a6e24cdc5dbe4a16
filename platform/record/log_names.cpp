#include "platform/record/log_names.h"

#include <algorithm>

namespace record {

namespace {

[[nodiscard]] bool is_digit(wchar_t unit) {
  return unit >= L'0' && unit <= L'9';
}

[[nodiscard]] bool is_number(std::wstring_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

/// Takes the part behind the last dot; all of it where there is none.
[[nodiscard]] std::wstring_view take_last(std::wstring_view& text) {
  const std::size_t dot = text.rfind(L'.');
  const std::wstring_view last = dot == std::wstring_view::npos ? text : text.substr(dot + 1);
  text = dot == std::wstring_view::npos ? std::wstring_view() : text.substr(0, dot);
  return last;
}

}  // namespace

bool is_log_name(std::wstring_view name) {
  if (take_last(name) != L"bin") return false;
  std::wstring_view writer = take_last(name);
  if (writer == L"v2") writer = take_last(name);
  const std::wstring_view time = take_last(name);
  return writer == L"kyinstall" ? !time.empty() && is_digit(time.back()) : is_number(writer) && is_number(time);
}

}  // namespace record
