#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Names of files, keys and values: they keep their case and are told apart without it.
namespace machine {

/// The folded form of one unit: ASCII letters only, as everywhere in the product.
[[nodiscard]] constexpr wchar_t fold(wchar_t unit) {
  return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - L'a' + L'A') : unit;
}

/// Negative, zero or positive, by folded units.
[[nodiscard]] int compare_names(std::wstring_view left, std::wstring_view right);

[[nodiscard]] inline bool same_name(std::wstring_view left, std::wstring_view right) {
  return left.size() == right.size() && compare_names(left, right) == 0;
}

/// The order of every map of names.
struct NameLess {
  using is_transparent = void;
  [[nodiscard]] bool operator()(std::wstring_view left, std::wstring_view right) const {
    return compare_names(left, right) < 0;
  }
};

/// The order of a folder's names. `exact` tells "a" and "A" apart, which stand side by side then.
struct ChildOrder {
  using is_transparent = void;
  bool exact = false;
  [[nodiscard]] bool operator()(std::wstring_view left, std::wstring_view right) const {
    const int order = compare_names(left, right);
    return order != 0 ? order < 0 : exact && left < right;
  }
};

[[nodiscard]] bool name_starts_with(std::wstring_view text, std::wstring_view start);
[[nodiscard]] bool name_ends_with(std::wstring_view text, std::wstring_view end);

/// The parts between backslashes; empty parts are left out.
[[nodiscard]] std::vector<std::wstring> split_path(std::wstring_view path);

}  // namespace machine
