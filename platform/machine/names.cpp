#include "platform/machine/names.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace machine {

int compare_names(std::wstring_view left, std::wstring_view right) {
  const std::size_t shared = std::min(left.size(), right.size());
  std::size_t i = 0;
  // Names beside each other begin alike for long, users' keys above all.
  constexpr std::size_t stride = 8;
  while (i + stride <= shared && std::memcmp(&left[i], &right[i], stride * sizeof(wchar_t)) == 0) i += stride;
  for (; i < shared; ++i) {
    if (left[i] == right[i]) continue;
    const wchar_t a = fold(left[i]);
    const wchar_t b = fold(right[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  if (left.size() == right.size()) return 0;
  return left.size() < right.size() ? -1 : 1;
}

bool name_starts_with(std::wstring_view text, std::wstring_view start) {
  return text.size() >= start.size() && same_name(text.substr(0, start.size()), start);
}

bool name_ends_with(std::wstring_view text, std::wstring_view end) {
  return text.size() >= end.size() && same_name(text.substr(text.size() - end.size()), end);
}

std::vector<std::wstring> split_path(std::wstring_view path) {
  std::vector<std::wstring> parts;
  std::size_t begin = 0;
  while (begin < path.size()) {
    std::size_t end = path.find(L'\\', begin);
    if (end == std::wstring_view::npos) end = path.size();
    if (end > begin) parts.emplace_back(path.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}

}  // namespace machine
