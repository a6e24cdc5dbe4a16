#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace log_tool {

/// The log has no levels; this is what the words of a message make of it.
enum class Severity : std::uint8_t { none, warning, error };

struct Finding {
  Severity severity = Severity::none;
  std::optional<std::int64_t> code;  // a result, or the system's error code
  bool exit_code = false;            // it is a program's
};

/// Judges a message. What stands in quotation marks are names and values, and does not count. A code that tells that
/// something was not there is no finding: for an uninstaller that is the normal case.
[[nodiscard]] Finding finding_of(std::wstring_view message);

}  // namespace log_tool
