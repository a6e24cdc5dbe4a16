#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace base::expressions {

/// Those that the grammar raises.
enum class ErrorId : std::int32_t {
  syntax_error_in_part = 1,
  parenthesis_missing = 3,
  empty_expression = 4,
  unexpected_end = 6,
  value_expected = 7,
  unknown_function = 102,
};

/// The format of an error's message, which takes one narrow text or none. It knows more ids than the grammar raises; an
/// id that it does not know is an unknown error.
[[nodiscard]] const char* message_format(std::int32_t id);

/// The message with its argument, as it stands in the log.
[[nodiscard]] std::string message_of(ErrorId id, std::string_view argument);

}  // namespace base::expressions
