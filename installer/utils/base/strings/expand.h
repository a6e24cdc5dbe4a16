#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace base::strings {

/// Replaces each "[Name]" in `text` by what `value_of(name)` gives, a null-terminated wide string or null where the
/// name is undefined. A value may hold "[Name]" forms itself; one that names itself does not end, so `step()` is called
/// before each replacement. An empty "[]" ends the expansion: what follows stays as it is. False where a name is
/// undefined; `text` is then half expanded.
template <class ValueOf, class Step>
[[nodiscard]] bool expand_in_place(std::wstring& text, ValueOf&& value_of, Step&& step) {
  // What lies before the first bracket never changes again, so the search goes on where the last replacement stood.
  std::size_t open = text.find(L'[');
  while (open != std::wstring::npos) {
    const std::size_t close = text.find(L']', open);
    if (close == std::wstring::npos || close == open + 1) return true;
    step();
    const wchar_t* const value = value_of(std::wstring_view(text).substr(open + 1, close - open - 1));
    if (value == nullptr) return false;
    text.replace(open, close - open + 1, value);
    open = text.find(L'[', open);
  }
  return true;
}

}  // namespace base::strings
