#pragma once

#include <string>

#include "installer/desktop/commands/base/expand.h"
#include "platform/ports/codes.h"

namespace host {

/// True where the text of an attribute closes with a variable that is empty, behind a backslash: what came out names
/// the parent of what was meant. A closing backslash that the variable's own text brings along is no such case.
[[nodiscard]] inline bool misses_last_name(const std::wstring& text, const std::wstring& expanded) {
  const std::size_t variable = text.ends_with(L']') ? text.rfind(L'[') : std::wstring::npos;
  if (variable == std::wstring::npos || !expanded.ends_with(L'\\')) return false;
  std::wstring before;
  return ky::ExpandVariables(text.substr(0, variable), before) == ports::code::success && before == expanded;
}

inline constexpr wchar_t missing_name[] = L"its last variable is empty";

}  // namespace host
