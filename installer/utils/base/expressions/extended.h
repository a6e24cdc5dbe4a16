#pragma once

namespace base::expressions {

/// The builds' runtimes err differently in the last digit of a double, which shows where a result is cut to an integer:
/// 10^LOG10(11) was 10 in one and 11 in the other. Functions are therefore computed with digits to spare.
using Extended = long double;

[[nodiscard]] constexpr double rounded(Extended value) {
  return static_cast<double>(value);
}

}  // namespace base::expressions
