#include "platform/machine/wildcard.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/machine/names.h"

namespace machine {

namespace {

// The file system's own wildcards, in the characters that Windows itself uses for them.
constexpr wchar_t dos_star = L'<';  // as "*", but stops at the last dot
constexpr wchar_t dos_mark = L'>';  // as "?", or nothing at a dot or at the end
constexpr wchar_t dos_dot = L'"';   // a dot, or nothing at the end

[[nodiscard]] bool last_dot(std::wstring_view name, std::size_t at) {
  return name[at] == L'.' && name.find(L'.', at + 1) == std::wstring_view::npos;
}

}  // namespace

std::wstring search_expression(std::wstring_view pattern) {
  if (pattern == L"*.*") return L"*";
  std::wstring out;
  for (const wchar_t unit : pattern) {
    if (unit == L'.' && !out.empty() && out.back() == L'*') out.back() = dos_star;
    if ((unit == L'?' || unit == L'*') && !out.empty() && out.back() == L'.') out.back() = dos_dot;
    out.push_back(unit == L'?' ? dos_mark : unit);
  }
  if (out.size() > 1 && out.back() == L'.' && out[out.size() - 2] == dos_star) out.pop_back();
  return out;
}

bool matches(std::wstring_view expression, std::wstring_view name, Case rule) {
  // reach[i]: the expression up to i fits the name up to the place that the loop stands at.
  std::vector<bool> reach(expression.size() + 1, false);
  reach[0] = true;
  const auto spread = [&](std::size_t at) {
    for (std::size_t i = 0; i < expression.size(); ++i) {
      if (!reach[i]) continue;
      const wchar_t unit = expression[i];
      const bool end = at == name.size();
      const bool nothing = unit == L'*' || unit == dos_star || (unit == dos_mark && (end || name[at] == L'.')) ||
                           (unit == dos_dot && end);
      if (nothing) reach[i + 1] = true;
    }
  };
  for (std::size_t at = 0; at < name.size(); ++at) {
    spread(at);
    std::vector<bool> next(expression.size() + 1, false);
    for (std::size_t i = 0; i < expression.size(); ++i) {
      if (!reach[i]) continue;
      const wchar_t unit = expression[i];
      if (unit == L'*' || (unit == dos_star && !last_dot(name, at))) next[i] = true;
      const bool one = unit == L'?' || (unit == dos_mark && name[at] != L'.') ||
                       (unit == dos_dot && name[at] == L'.') || unit == name[at] ||
                       (rule == Case::folded && fold(unit) == fold(name[at]));
      if (one) next[i + 1] = true;
    }
    reach = next;
    if (std::none_of(reach.begin(), reach.end(), [](bool b) { return b; })) return false;
  }
  spread(name.size());
  return reach[expression.size()];
}

}  // namespace machine
