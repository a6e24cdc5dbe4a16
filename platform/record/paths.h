#pragma once

#include <string>
#include <string_view>

namespace record {

/// A Windows path in the one form in which changes name it: "\" alone as separator and never twice, no closing one
/// except a drive's, no "\\?\" in front. Case stays.
[[nodiscard]] std::wstring plain_path(std::wstring_view path);

/// `folder` and `name` with one separator between.
[[nodiscard]] std::wstring joined(std::wstring_view folder, std::wstring_view name);

/// ASCII letters made small: two paths are one when this is equal.
[[nodiscard]] std::wstring folded(std::wstring_view path);

}  // namespace record
