#pragma once

#include <memory>
#include <string_view>

namespace ky {

/// A NUL-terminated string that an object of the boundary owns; its field is one pointer.
using HeapString = std::unique_ptr<wchar_t[]>;
using NarrowHeapString = std::unique_ptr<char[]>;
static_assert(sizeof(HeapString) == sizeof(void*));

/// A heap copy of `text` with its terminator.
template <class Character>
[[nodiscard]] std::unique_ptr<Character[]> DuplicateString(std::basic_string_view<Character> text) {
  std::unique_ptr<Character[]> copy(new Character[text.size() + 1]);
  text.copy(copy.get(), text.size());
  copy[text.size()] = Character{};
  return copy;
}

}  // namespace ky
