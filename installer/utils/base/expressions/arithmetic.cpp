#include "installer/utils/base/expressions/arithmetic.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>

#include "installer/utils/base/expressions/extended.h"

namespace base::expressions {

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
/// Any integer of so many digits is exact as a double.
constexpr std::size_t exact_digits = 15;

double truth(bool value) {
  return value ? 1 : 0;
}

double shifted_left(std::int32_t value, std::int32_t by) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) << (by & 31));
}

/// A negative number is its own factorial. Once infinite the product stays so.
double factorial(std::int32_t n) {
  double product = n;
  for (std::int64_t factor = std::int64_t{n} - 1; factor >= 2 && !std::isinf(product); --factor) {
    product *= static_cast<double>(factor);
  }
  return product == 0 ? 1 : product;
}

double parsed(std::string_view token) {
  double value = 0;
  const auto result = std::from_chars(token.data(), token.data() + token.size(), value);
  // Only there is it left open whether the number is too great or too small.
  if (result.ec == std::errc::result_out_of_range) return std::strtod(std::string(token).c_str(), nullptr);
  return value;
}

}  // namespace

std::int32_t to_integer(double value) {
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : lowest;
}

double to_number(std::string_view token) {
  if (token.size() > exact_digits) return parsed(token);
  std::int64_t value = 0;
  for (const char c : token) {
    if (c < '0' || c > '9') return parsed(token);
    value = value * 10 + (c - '0');
  }
  return static_cast<double>(value);
}

bool remainder_faults(double left, double right) {
  const std::int32_t divisor = to_integer(right);
  return divisor == 0 || (divisor == -1 && to_integer(left) == lowest);
}

double apply_operator(Operator op, double left, double right) {
  switch (op) {
    case Operator::bit_and:
      return to_integer(left) & to_integer(right);
    case Operator::bit_or:
      return to_integer(left) | to_integer(right);
    case Operator::shift_left:
      return shifted_left(to_integer(left), to_integer(right));
    case Operator::shift_right:
      return to_integer(left) >> (to_integer(right) & 31);
    case Operator::equal:
      return truth(left == right);
    case Operator::not_equal:
      return truth(left != right);
    case Operator::less:
      return truth(left < right);
    case Operator::greater:
      return truth(left > right);
    case Operator::less_equal:
      return truth(left <= right);
    case Operator::greater_equal:
      return truth(left >= right);
    case Operator::add:
      return left + right;
    case Operator::subtract:
      return left - right;
    case Operator::multiply:
      return left * right;
    case Operator::divide:
      return left / right;
    case Operator::remainder:
      return to_integer(left) % to_integer(right);
    case Operator::bit_xor:
      return to_integer(left) ^ to_integer(right);
    case Operator::power:
      return rounded(std::pow(Extended{left}, Extended{right}));
    case Operator::factorial:
      return factorial(to_integer(left));
    case Operator::none:
      break;
  }
  return 0;
}

double inverted(double value) {
  return truth(to_integer(value) == 0);
}

}  // namespace base::expressions
