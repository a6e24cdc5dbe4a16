#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// Case folding is ASCII in both builds, as in the C locale.
namespace base::strings {

[[nodiscard]] constexpr wchar_t to_lower(wchar_t c) {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

[[nodiscard]] inline std::wstring lower_cased(std::wstring_view text) {
  std::wstring lowered(text);
  for (wchar_t& c : lowered) c = to_lower(c);
  return lowered;
}

[[nodiscard]] constexpr bool equal_ignoring_case(std::wstring_view a, std::wstring_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return to_lower(x) == to_lower(y); });
}

/// Order without regard to case, for maps.
struct LessIgnoringCase {
  using is_transparent = void;
  [[nodiscard]] bool operator()(std::wstring_view a, std::wstring_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](wchar_t x, wchar_t y) { return to_lower(x) < to_lower(y); });
  }
};

}  // namespace base::strings
