#include "platform/record/paths.h"

#include <algorithm>

namespace record {

std::wstring plain_path(std::wstring_view path) {
  std::wstring text(path);
  std::replace(text.begin(), text.end(), L'/', L'\\');
  constexpr std::wstring_view verbatim = L"\\\\?\\";
  if (text.starts_with(verbatim)) {
    const bool share = folded(text).starts_with(L"\\\\?\\unc\\");
    text.replace(0, share ? 8 : verbatim.size(), share ? L"\\\\" : L"");
  }
  const auto doubled = [](wchar_t left, wchar_t right) { return left == L'\\' && right == L'\\'; };
  if (!text.empty()) text.erase(std::unique(text.begin() + 1, text.end(), doubled), text.end());
  const bool drive_root = text.size() == 3 && text[1] == L':';
  if (text.size() > 1 && text.back() == L'\\' && !drive_root) text.pop_back();
  return text;
}

std::wstring joined(std::wstring_view folder, std::wstring_view name) {
  std::wstring path(folder);
  if (!path.empty() && path.back() != L'\\' && !name.empty()) path += L'\\';
  return path.append(name);
}

std::wstring folded(std::wstring_view path) {
  std::wstring text(path);
  for (wchar_t& unit : text) {
    if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
  }
  return text;
}

}  // namespace record
