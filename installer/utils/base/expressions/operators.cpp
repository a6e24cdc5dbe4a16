#include "installer/utils/base/expressions/operators.h"

#include <array>
#include <iterator>

namespace base::expressions {

namespace {

/// Operators of one character, by the character.
constexpr std::array<Operator, 256> make_singles() {
  std::array<Operator, 256> singles{};
  for (Operator& op : singles) op = Operator::none;
  for (std::size_t id = 0; id < std::size(operator_rows); ++id) {
    const std::string_view text = operator_rows[id].text;
    if (text.size() == 1) singles[static_cast<unsigned char>(text[0])] = static_cast<Operator>(id);
  }
  return singles;
}
constexpr std::array<Operator, 256> singles = make_singles();
constexpr std::size_t longest = 3;

}  // namespace

Operator operator_of(std::string_view token) {
  if (token.size() == 1) return singles[static_cast<unsigned char>(token[0])];
  if (token.empty() || token.size() > longest) return Operator::none;
  for (std::size_t id = 0; id < std::size(operator_rows); ++id) {
    if (operator_rows[id].text == token) return static_cast<Operator>(id);
  }
  return Operator::none;
}

}  // namespace base::expressions
