#include "installer/desktop/commands/data/expressionparser.h"

#include <cmath>
#include <iostream>
#include <limits>

#include "installer/desktop/commands/data/parseerror.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

constexpr double lowest = std::numeric_limits<std::int32_t>::min();
constexpr double infinite = std::numeric_limits<double>::infinity();

class Expressions : public CommandFixture {
 protected:
  struct Row {
    std::string text;
    double value;
  };

  static double evaluate(const std::string& text) { return CExpressionParser(text.c_str()).Evaluate(); }

  /// All of them without an error. Variables: three is 3, big the lowest integer, AND and abs 5.
  void expect(std::initializer_list<Row> rows) {
    put("three", 3);
    put("big", std::numeric_limits<std::int32_t>::min());
    put("AND", 5);
    put("abs", 5);
    for (const Row& row : rows) {
      const double value = evaluate(row.text);
      if (std::isnan(row.value)) {
        EXPECT_TRUE(std::isnan(value)) << row.text;
      } else {
        EXPECT_DOUBLE_EQ(value, row.value) << row.text;
      }
    }
    EXPECT_EQ(log, std::vector<std::wstring>());
  }

  /// Evaluates on a machine that tells why it stops.
  static void evaluate_and_tell(const std::string& text) {
    machine::Options options;
    options.on_stop = [](const ports::StopReason& reason) {
      std::cerr << static_cast<int>(reason.kind) << ' ' << std::string(reason.text.begin(), reason.text.end());
    };
    machine::Machine telling(std::move(options));
    const std::unique_ptr<ports::Engines> own_engines = ports::make_engines(telling.errors());
    const ports::System own = telling.system(*own_engines);
    ports::bind(own);
    static_cast<void>(evaluate(text));
  }
};

TEST_F(Expressions, Operators) {
  expect({
      {"6 AND 3", 2},
      {"0.9 AND 1", 0},
      {"-1 AND 7", 7},
      {"2147483647.9 AND -1", 2147483647},
      {"2147483648 AND -1", lowest},
      {"-2147483648.9 AND -1", lowest},
      {"-2147483649 AND -1", lowest},
      {"1e300 AND -1", lowest},
      {"1e400 AND -1", lowest},
      {"sqrt(-1) AND -1", lowest},
      {"6 OR 3", 7},
      {"6 XOR 3", 5},
      {"big XOR -1", 2147483647},
      {"3 << 2", 12},
      {"1 << 31", lowest},
      {"1 << 33", 2},
      {"3 << -31", 6},
      {"-1 << 4", -16},
      {"1e10 << 1", 0},
      {"13 >> 2", 3},
      {"-13 >> 2", -4},
      {"8 >> 35", 1},
      {"2 == 2.0", 1},
      {"0.1 + 0.2 == 0.3", 0},
      {"2 != 2.5", 1},
      {"2 < 2", 0},
      {"1.5 < 2", 1},
      {"2 > 1.5", 1},
      {"2 <= 2", 1},
      {"3 <= 2", 0},
      {"2 >= 2", 1},
      {"1 >= 2", 0},
      {"1.5 + 2.25", 3.75},
      {"1 - 2.5", -1.5},
      {"1.5 * 3", 4.5},
      {"1 / 4", 0.25},
      {"1 / 0", infinite},
      {"-1 / 0", -infinite},
      {"0 / 0", std::nan("")},
      {"7.9 % 4.9", 3},
      {"-7 % 4", -3},
      {"7 % -4", 3},
      {"1e10 % 1000", -648},
      {"(big + 1) % -1", 0},
      {"0 % 1", 0},
      {"2 ^ 10", 1024},
      {"2 ^ -1", 0.5},
      {"4 ^ 0.5", 2},
      {"(0-8) ^ 0.5", std::nan("")},
      {"3!", 6},
      {"0!", 1},
      {"1!", 1},
      {"3.9!", 6},
      {"-3!", -3},
      {"(3!)!", 720},
      {"20.9!", 2432902008176640000.0},
      {"171!", infinite},
      {"2000000000!", infinite},
      {"big!", lowest},
      {"-three", -3},
      {"!3", 0},
      {"!0", 1},
      {"!0.9", 1},
      {"!3!", 1},
  });
}

TEST_F(Expressions, PrecedenceAndGrouping) {
  expect({
      {"2 + 3 * 4", 14},
      {"2 ^ 3 ^ 2", 64},
      {"-2 ^ 2", 4},
      {"2 ^ -2 ^ 2", 0.0625},
      {"2 * 3 ^ 2", 18},
      {"10 - 2 - 3", 5},
      {"100 / 5 / 2", 10},
      {"100 / 5 * 2", 40},
      {"7 % 4 * 2", 6},
      {"2 + 6 XOR 3", 7},
      {"6 XOR 3 * 2", 10},
      {"1 < 2 + 3", 1},
      {"1 + 2 < 3", 0},
      {"3 > 2 > 1", 0},
      {"2 < 1 == 0", 1},
      {"1 AND 2 == 2", 1},
      {"2 == 2 AND 1", 1},
      {"1 << 2 + 1", 8},
      {"8 >> 1 << 2", 16},
      {"4 OR 2 AND 1", 0},
      {"1 OR 6 == 2", 1},
      {"-2 * -3", 6},
      {"5--3", 8},
      {"2 ^ 3!", 64},
      {"-3 + 5", 2},
      {"!0 + 1", 2},
      {"(2 + 3) * 4", 20},
      {"((((7))))", 7},
      {"2 * (3 + (4 - 1))", 12},
      {"-(2 + 3)", -5},
      {"!(1 == 2)", 1},
      {"-(3)!", -3},
  });
}

TEST_F(Expressions, FunctionsConstantsAndVariables) {
  expect({
      {"abs(0 - 2.5)", 2.5},
      {"EXP(1)", 2.718281828459045},
      {"sqrt(16)", 4},
      {"SQRT (16)", 4},
      {"sQrT\t(16) + 1", 5},
      {"log(E)", 1},
      {"Log10(1000)", 3},
      {"10 ^ log10(11) AND -1", 11},
      {"1923 ^ -1 * 1923 AND -1", 1},
      {"sin(pi / 6)", 0.5},
      {"cos(PI)", -1},
      {"tan(Pi / 4)", 1},
      {"asin(1) * 2", 3.141592653589793},
      {"acos(0) * 2", 3.141592653589793},
      {"atan(1) * 4", 3.141592653589793},
      {"sqrt(-1)", std::nan("")},
      {"log(0)", -infinite},
      {"asin(2)", std::nan("")},
      {"-sqrt(16)", -4},
      {"sqrt(sqrt(16))", 2},
      {"sqrt(9)!", 6},
      {"!sqrt(9)", 0},
      {"e", 2.718281828459045},
      {"three * 2", 6},
      {"Three", 0},
      {"unset + 1", 1},
      {"big - 1", lowest - 1},
      {"AND", 5},
      {"1 + AND", 6},
      {"AND AND AND", 5},
      {"1 AND (3)", 1},
      {"AND AND(7)", 5},
      {"abs", 5},
      {"_a1", 0},
  });
}

TEST_F(Expressions, TokensAndWhatIsNotLookedAt) {
  expect({
      {"\t 1\t+ 2 ", 3},
      {"1 2", 1},
      {"1 & 2", 1},
      {"1)", 1},
      {"3!!", 3},
      {"3! !", 720},
      {"2 !=3", 1},
      {"3!=6", 1},
      {"3!+1", 3},
      {"3!-1", 5},
      {"1 ++ 2", 1},
      {"2 =! 3", 2},
      {"1 and 0", 1},
      {"1 xor 1", 1},
      {"sqrt 16", 0},
      {"1 2 #", 1},
      {"(1)(2)", 1},
      {"1.2.3", 1.2},
      {".5 + 5.", 5.5},
      {".", 0},
      {"1e3", 1000},
      {"1E+3", 1000},
      {"5e-1", 0.5},
      {"1e", 1},
      {"2E*3", 6},
      {"2EXP(1)", 2},
      {"1e3.5", 1000},
      {"1e400", infinite},
      {"0x10", 0},
      {"010", 10},
      {"99999999999", 99999999999.0},
      {std::string(127, '1'), std::strtod(std::string(127, '1').c_str(), nullptr)},
      {std::string(512, '(') + "1" + std::string(512, ')'), 1},
  });
}

TEST_F(Expressions, AnAssignmentStoresTheIntegerAndGivesTheValue) {
  const struct {
    const char* text;
    double value;
    std::int32_t stored;  // under int_x, which was 7
  } rows[] = {
      {"x = 2.9", 2.9, 2},   {"x=0-2.9", -2.9, -2}, {"x = 1e10", 1e10, std::numeric_limits<std::int32_t>::min()},
      {"x = x + 1 2", 8, 8}, {"x =- 3", -3, -3},    {"x = 1 < 2 AND 1", 1, 1},
      {"x == 2", 0, 7},      {"x =! 3", 7, 7},      {"x", 7, 7},
      {"x = y = 3", 0, 0},   {"x = (x = 3)", 0, 7}, {"x = 1 +", 0, 7},
      {"x = 4 #", 0, 7}};
  for (const auto& row : rows) {
    put("x", 7);
    EXPECT_EQ(evaluate(row.text), row.value) << row.text;
    EXPECT_EQ(get_int("x"), row.stored) << row.text;
  }
  EXPECT_EQ(evaluate("PI = 4"), 4);
  EXPECT_EQ(get_int("PI"), 4);
  EXPECT_EQ(get_int("y"), 0);
}

TEST_F(Expressions, AnErrorIsOneLineOfTheLogAndTheValueZero) {
  const struct {
    std::string text;
    std::wstring message;
  } rows[] = {
      {"", L"Empty expression"},
      {" \t", L"Empty expression"},
      {"(1 + 2", L"Parenthesis ) missing"},
      {"(1 2)", L"Parenthesis ) missing"},
      {"(a = 1)", L"Parenthesis ) missing"},
      {"FOO(1", L"Parenthesis ) missing"},
      {"FOO(1)", L"Unknown function FOO"},
      {"foo(sqrt(-1)) + 1", L"Unknown function foo"},
      {"1 +", L"Unexpected end of expression"},
      {"x =", L"Unexpected end of expression"},
      {"(", L"Unexpected end of expression"},
      {"1 + *", L"Value expected"},
      {"- -1", L"Value expected"},
      {"!-1", L"Value expected"},
      {"()", L"Value expected"},
      {"sqrt()", L"Value expected"},
      {"= 1", L"Value expected"},
      {"x = = 1", L"Value expected"},
      {"! !1", L"Value expected"},
      {"#", L"Syntax error in part \"#\""},
      {"1 + $a + 2", L"Syntax error in part \"$a + 2\""},
      {"1 #", L"Syntax error in part \"#\""},
      {"FOO(1) #", L"Syntax error in part \"#\""},
      {"\xC4", L"Syntax error in part \"\u00C4\""},
      {"1\n", L"Syntax error in part \"\n\""},
      {std::string(127, '#'), L"Syntax error in part \"" + std::wstring(127, L'#') + L"\""},
  };
  for (const auto& row : rows) {
    log.clear();
    EXPECT_EQ(evaluate(row.text), 0) << row.text;
    EXPECT_EQ(log, (std::vector<std::wstring>{L"[Expression Parser] Error: " + row.message + L" (ln 0, col 0)\n"}))
        << row.text;
  }
}

TEST_F(Expressions, WhatDoesNotFitOrFaultsStopsTheProcess) {
  const struct {
    std::string text;
    const char* reason;
  } rows[] = {
      {"5 % 0.5", "3 expression: remainder: 5 % 0"},
      {"big % -1", "3 expression: remainder: -2147483648 % -1"},
      {std::string(128, 'n') + " = 1", "0 expression: part too long: n"},
      {"1 + #" + std::string(127, ' '), "0 expression: part too long: #"},
      {std::string(513, '(') + "1", "0 expression: nested too deeply: "},
  };
  put("big", std::numeric_limits<std::int32_t>::min());
  for (const auto& row : rows) {
    EXPECT_EXIT(evaluate_and_tell(row.text), testing::ExitedWithCode(1), row.reason) << row.text;
  }
}

TEST(ParseError, KeepsTheMessageOfItsIdAndNoPlace) {
  const struct {
    std::int32_t id;
    const char* message;
  } rows[] = {{1, "Syntax error in part \"x\""},
              {2, "Syntax error"},
              {3, "Parenthesis ) missing"},
              {4, "Empty expression"},
              {5, "Unexpected part \"x\""},
              {6, "Unexpected end of expression"},
              {7, "Value expected"},
              {101, "Unknown operator x"},
              {102, "Unknown function x"},
              {103, "Unknown variable x"},
              {104, "Unknown error"},
              {200, "Too long expression, maximum number of characters exceeded"},
              {300, "Defining variable failed"},
              {400, "Integer value expected in function x"}};
  for (const auto& row : rows) {
    const CParseError error(3, 4, row.id, "x");
    EXPECT_STREQ(error.Message(), row.message);
    EXPECT_EQ(error.row + error.col + error.id, 0);
  }
  EXPECT_EQ(CParseError(0, 0, 101, std::string(300, 'x').c_str()).Message(),
            "Unknown operator " + std::string(237, 'x'));
}

}  // namespace
}  // namespace ky
