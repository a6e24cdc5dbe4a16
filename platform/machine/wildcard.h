#pragma once

#include <string>
#include <string_view>

namespace machine {

/// The pattern that the file system is asked for when a program searches for `pattern`: "*.*" is "*", "?" also stands
/// for nothing at the end of a name or before a dot, and "*." finds names without a dot.
[[nodiscard]] std::wstring search_expression(std::wstring_view pattern);

enum class Case { folded, exact };

/// True when `name` is in the expression, which `search_expression` made.
[[nodiscard]] bool matches(std::wstring_view expression, std::wstring_view name, Case rule = Case::folded);

}  // namespace machine
