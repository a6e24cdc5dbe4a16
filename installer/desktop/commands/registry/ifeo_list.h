#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ky {

/// The names in a list with ";" between them. A closing ";" makes no empty name, one in the middle does; an empty list
/// has none.
[[nodiscard]] std::vector<std::wstring> IfeoExecutables(std::wstring_view list);

/// The Image File Execution Options key of an executable that is named without its extension, below
/// HKEY_LOCAL_MACHINE.
[[nodiscard]] std::wstring IfeoKey(std::wstring_view executable);

}  // namespace ky
