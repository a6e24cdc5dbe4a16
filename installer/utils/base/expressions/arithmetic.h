#pragma once

#include <cstdint>
#include <string_view>

#include "installer/utils/base/expressions/operators.h"

namespace base::expressions {

/// Towards zero; out of range or not a number gives the lowest integer, as the processor does.
[[nodiscard]] std::int32_t to_integer(double value);

/// What strtod makes of a number token, in the C locale: the longest beginning that is a number; 0 where there is none.
[[nodiscard]] double to_number(std::string_view token);

/// True where the processor would fault: a zero divisor, and the lowest integer by -1.
[[nodiscard]] bool remainder_faults(double left, double right);

/// The operator's result; of the factorial `right` plays no part. A remainder must not fault.
[[nodiscard]] double apply_operator(Operator op, double left, double right);

/// The prefix "!": 1 where the integer is 0, else 0.
[[nodiscard]] double inverted(double value);

}  // namespace base::expressions
