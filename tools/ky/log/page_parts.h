#pragma once

#include <string_view>

/// The files of `page/`, as the build embeds them.
namespace log_tool::page_parts {

[[nodiscard]] std::string_view document();
[[nodiscard]] std::string_view style();
[[nodiscard]] std::string_view model();
[[nodiscard]] std::string_view timeline();
[[nodiscard]] std::string_view list();
[[nodiscard]] std::string_view rows();
[[nodiscard]] std::string_view panels();
[[nodiscard]] std::string_view viewer();

}  // namespace log_tool::page_parts
