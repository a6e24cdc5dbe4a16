#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace base::expressions {

/// In the order of their ids.
enum class Operator : std::int32_t {
  none = -1,
  bit_and,
  bit_or,
  shift_left,
  shift_right,
  equal,
  not_equal,
  less,
  greater,
  less_equal,
  greater_equal,
  add,
  subtract,
  multiply,
  divide,
  remainder,
  bit_xor,
  power,
  factorial,  // behind a value; before one it negates logically
};

/// How tightly binary operators bind, from the loosest on; all group from the left, the power included.
enum class Level : std::uint8_t { none, logic, comparison, sum, product, power };

struct OperatorRow {
  std::string_view text;
  Level level;
};

/// By id. Names of operators are case-sensitive.
inline constexpr OperatorRow operator_rows[] = {
    {"AND", Level::logic},     {"OR", Level::logic},      {"<<", Level::logic},     {">>", Level::logic},
    {"==", Level::comparison}, {"!=", Level::comparison}, {"<", Level::comparison}, {">", Level::comparison},
    {"<=", Level::comparison}, {">=", Level::comparison}, {"+", Level::sum},        {"-", Level::sum},
    {"*", Level::product},     {"/", Level::product},     {"%", Level::product},    {"XOR", Level::product},
    {"^", Level::power},       {"!", Level::none},
};

[[nodiscard]] constexpr Level level_of(Operator op) {
  return op == Operator::none ? Level::none : operator_rows[static_cast<std::size_t>(op)].level;
}

/// The operator whose text `token` is, whatever kind of token it is. "=" assigns and is none.
[[nodiscard]] Operator operator_of(std::string_view token);

}  // namespace base::expressions
