#include "installer/utils/base/expressions/syntax_check.h"

#include <gtest/gtest.h>

namespace base::expressions {
namespace {

/// As "name@offset", a written one with "=".
std::string uses(const SyntaxCheck& check) {
  std::string text;
  for (const VariableUse& use : check.variables) {
    text += (text.empty() ? "" : " ") + use.name + (use.written ? "=" : "") + "@" + std::to_string(use.offset);
  }
  return text;
}

TEST(SyntaxCheck, TellsWhereATextEndsOrFailsAndWhatItNames) {
  const struct {
    std::string text;
    std::string error;
    std::size_t place;  // of the error, or the end
    std::string variables;
  } rows[] = {
      {"1 + 2 ", "", 6, ""},
      {"1 + a 2", "", 6, "a@4"},
      {"a & #", "", 2, "a@0"},
      {" x = y + sqrt(x) * pi", "", 21, "x=@1 y@5 x@14"},
      {"E = e", "", 5, "E=@0"},
      {"x == 1", "", 6, "x@0"},
      {"(a = 1)", "Parenthesis ) missing", 3, "a@1"},
      {"a + FOO (b)", "Unknown function FOO", 4, "a@0 b@9"},
      {"x = a #1", "Syntax error in part \"#1\"", 6, "a@4"},
      {"x #1", "Syntax error in part \"#1\"", 2, ""},
      {" \t", "Empty expression", 2, ""},
      {"1e300 % (0 - 1.5)", "A remainder that stops the process", 13, ""},
      {"a % 0.9", "A remainder that stops the process", 4, "a@0"},
      {"-2 ^ 31 % (2 - 3)", "A remainder that stops the process", 15, ""},
      {"5 % a + 0 % 4 % (a - a)", "", 23, "a@4 a@17 a@21"},
      {"1 + *", "Value expected", 4, ""},
      {"1 +", "Unexpected end of expression", 3, ""},
      {std::string("a\0b", 3), "", 1, "a@0"},
      {"1 + " + std::string(127, 'n'), "", 131, std::string(127, 'n') + "@4"},
      {"1 + " + std::string(128, 'n'), "A part of more than 127 characters", 4, ""},
      {"1 #" + std::string(128, ' '), "A part of more than 127 characters", 2, ""},
      {std::string(512, '(') + "1" + std::string(512, ')'), "", 1025, ""},
      {std::string(513, '(') + "1", "More than 512 brackets within each other", 512, ""},
  };
  for (const auto& row : rows) {
    const SyntaxCheck check = check_syntax(row.text);
    EXPECT_EQ(check.error, row.error) << row.text;
    EXPECT_EQ(row.error.empty() ? check.end : check.error_offset, row.place) << row.text;
    EXPECT_EQ(uses(check), row.variables) << row.text;
  }
}

}  // namespace
}  // namespace base::expressions
