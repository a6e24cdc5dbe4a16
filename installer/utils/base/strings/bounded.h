#pragma once

#include <cstddef>
#include <string>

namespace base::strings {

/// What a bounds-checked format or copy gives: `text`, where it and its terminator fit into `room` characters.
/// Otherwise the process stops at `place`, which docs/stops.md lists.
[[nodiscard]] std::wstring bounded(std::wstring text, std::size_t room, const wchar_t* place);

}  // namespace base::strings
