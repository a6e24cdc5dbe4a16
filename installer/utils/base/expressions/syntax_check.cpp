#include "installer/utils/base/expressions/syntax_check.h"

#include <optional>
#include <utility>

#include "installer/utils/base/expressions/arithmetic.h"
#include "installer/utils/base/expressions/grammar.h"

namespace base::expressions {

namespace {

/// Why and where an expression is refused.
struct Refusal {
  std::string message;
  const char* at;
};

/// A domain that notes names, and knows the values of numbers alone: what is computed from a variable, or by a
/// function, is known in a run only.
class Collecting {
 public:
  struct Value {
    std::optional<double> known = std::nullopt;
    const char* at = nullptr;  // its last number or name
  };

  explicit Collecting(const char* text) : text_(text) {}

  Value number(std::string_view token) { return {to_number(token), token.data()}; }
  Value constant(double value) { return {value, text_}; }
  Value variable(std::string_view name) {
    uses_.push_back(use_of(name, false));
    return {std::nullopt, name.data()};
  }
  Value negated(Value value) { return {value.known ? std::optional(-*value.known) : std::nullopt, value.at}; }
  Value inverted(Value value) {
    return {value.known ? std::optional(expressions::inverted(*value.known)) : std::nullopt, value.at};
  }
  Value apply(Operator op, Value left, Value right) {
    if (op == Operator::factorial) return {std::nullopt, left.at};
    if (op == Operator::remainder && right.known && remainder_faults(left.known.value_or(1), *right.known)) {
      throw Refusal{"A remainder that stops the process", right.at};
    }
    if (!left.known || !right.known) return {std::nullopt, right.at};
    return {apply_operator(op, *left.known, *right.known), right.at};
  }
  Value call(const Function&, Value argument) { return {std::nullopt, argument.at}; }
  void assign(std::string_view name, Value) { uses_.insert(uses_.begin(), use_of(name, true)); }

  [[noreturn]] void fail(ErrorId id, std::string_view argument, const char* at) {
    throw Refusal{message_of(id, argument), at};
  }
  [[noreturn]] void exceed(Bound bound, const char* at) {
    if (bound == Bound::nesting) {
      throw Refusal{"More than " + std::to_string(deepest_nesting) + " brackets within each other", at};
    }
    throw Refusal{"A part of more than " + std::to_string(Scanner::capacity - 1) + " characters", at};
  }

  [[nodiscard]] std::vector<VariableUse> take_uses() { return std::move(uses_); }

 private:
  [[nodiscard]] VariableUse use_of(std::string_view name, bool written) const {
    return {std::string(name), static_cast<std::size_t>(name.data() - text_), written};
  }

  const char* text_;
  std::vector<VariableUse> uses_;
};

}  // namespace

SyntaxCheck check_syntax(std::string_view expression) {
  const std::string text(expression);  // the scanner wants a terminator
  SyntaxCheck result;
  result.end = text.size();
  Scanner scanner(text.c_str());
  Collecting domain(text.c_str());
  Grammar<Collecting> grammar(scanner, domain);
  try {
    grammar.parse();
    result.end = static_cast<std::size_t>(grammar.rest() - text.c_str());
  } catch (const Refusal& refusal) {
    result.error = refusal.message;
    result.error_offset = static_cast<std::size_t>(refusal.at - text.c_str());
  }
  result.variables = domain.take_uses();
  return result;
}

}  // namespace base::expressions
