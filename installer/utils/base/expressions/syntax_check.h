#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace base::expressions {

/// A variable in an expression.
struct VariableUse {
  std::string name;  // without prefix, as written; "E" and "PI" are read as constants, but may be written
  std::size_t offset = 0;
  bool written = false;  // the left side of an assignment whose right side parses
};

/// What an expression's text is, without a value being computed.
struct SyntaxCheck {
  std::string error;             // as an evaluation would log it; empty where the text parses
  std::size_t error_offset = 0;  // of the token that is refused
  std::size_t end = 0;           // of the first token behind the value, from which on the text plays no part; the size
                                 // where there is none or an error
  std::vector<VariableUse> variables;  // those up to the error, in their order
};

/// Parses `expression` by the same grammar as an evaluation. A token that would stop the process for its length is an
/// error here, and so are brackets nested too deeply. A NUL ends the expression.
[[nodiscard]] SyntaxCheck check_syntax(std::string_view expression);

}  // namespace base::expressions
