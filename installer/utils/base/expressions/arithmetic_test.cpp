#include "installer/utils/base/expressions/arithmetic.h"

#include <gtest/gtest.h>

#include <limits>

namespace base::expressions {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

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

}  // namespace
}  // namespace base::expressions
