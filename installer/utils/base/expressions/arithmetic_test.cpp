#include "installer/utils/base/expressions/arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace base::expressions {
namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Arithmetic, ConvertsToIntegersAsTheProcessorDoes) {
  const struct {
    double value;
    std::int32_t integer;
  } rows[] = {{2.9, 2},
              {-2.9, -2},
              {2147483647.9, 2147483647},
              {2147483648.0, lowest},
              {-2147483648.9, lowest},
              {-2147483649.0, lowest},
              {1e300, lowest},
              {infinite, lowest},
              {std::nan(""), lowest}};
  for (const auto& row : rows) EXPECT_EQ(to_integer(row.value), row.integer) << row.value;
}

TEST(Arithmetic, ReadsNumbersUpToWhereTheyAreOne) {
  const struct {
    const char* token;
    double value;
  } rows[] = {{"007", 7},
              {"1.2.3", 1.2},
              {".5", 0.5},
              {"5.", 5},
              {".", 0},
              {"..5", 0},
              {".E5", 0},
              {"2E", 2},
              {"2e+", 2},
              {"1.5E-3", 0.0015},
              {"999999999999999", 999999999999999.0},
              {"12345678901234567890", 12345678901234567890.0},
              {"1e400", infinite},
              {"1e-400", 0},
              {"4.9e-324", 4.9e-324}};
  for (const auto& row : rows) EXPECT_EQ(to_number(row.token), row.value) << row.token;
}

TEST(Arithmetic, KnowsWhereARemainderFaults) {
  EXPECT_TRUE(remainder_faults(1, 0.9));
  EXPECT_TRUE(remainder_faults(lowest, -1));
  EXPECT_TRUE(remainder_faults(1e300, -1.5));
  EXPECT_FALSE(remainder_faults(lowest + 1.0, -1));
  EXPECT_FALSE(remainder_faults(0, 1));
}

TEST(Arithmetic, AFactorialEndsWhereItIsInfinite) {
  EXPECT_EQ(apply_operator(Operator::factorial, 20.9, 0), 2432902008176640000.0);
  EXPECT_EQ(apply_operator(Operator::factorial, 2147483647, 0), infinite);
  EXPECT_EQ(apply_operator(Operator::factorial, lowest, 0), lowest);
}

}  // namespace
}  // namespace base::expressions
