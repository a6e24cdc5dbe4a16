#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "installer/utils/base/expressions/functions.h"
#include "installer/utils/base/expressions/operators.h"
#include "installer/utils/base/expressions/parse_errors.h"
#include "installer/utils/base/expressions/scanner.h"

namespace base::expressions {

/// What an expression may not exceed; evaluation stops the process there.
enum class Bound : std::uint8_t { token_length, nesting };

/// Brackets within each other. A script's value is too short to come near.
inline constexpr int deepest_nesting = 512;

/// The grammar, in one pass and without a tree. What values are and what is done with them is the domain's:
///
///   using Value;
///   Value number(std::string_view text);                     as scanned: "1.2.3" is possible
///   Value constant(double value);
///   Value variable(std::string_view name);
///   Value negated(Value), inverted(Value);                   prefix "-" and "!"
///   Value apply(Operator, Value left, Value right);          the factorial has no right operand: it gets a Value{}
///   Value call(const Function&, Value argument);
///   void assign(std::string_view name, Value);
///   [[noreturn]] void fail(ErrorId, std::string_view argument, const char* at);
///   [[noreturn]] void exceed(Bound, const char* at);
///
/// Names and places point into the scanned text.
template <class Domain>
class Grammar {
 public:
  using Value = typename Domain::Value;

  Grammar(Scanner& scanner, Domain& domain) : scanner_(scanner), domain_(domain) {}

  /// Reads one expression from the scanner's place. What follows a complete value is deliberately not looked at, but
  /// for its first token, which has to be one.
  Value parse() {
    next();
    if (at_end()) fail(ErrorId::empty_expression);
    return assignment();
  }

  /// The first token that `parse` made no use of.
  [[nodiscard]] const char* rest() const { return start_; }

 private:
  void next() {
    scanner_.skip_blanks();
    start_ = scanner_.pos;
    if (!scanner_.read()) domain_.exceed(Bound::token_length, start_);
    if (scanner_.tokenType == TokenType::unknown) fail(ErrorId::syntax_error_in_part);
    operator_ = scanner_.tokenType == TokenType::number ? Operator::none : operator_of(text());
  }

  [[nodiscard]] std::string_view text() const { return {start_, static_cast<std::size_t>(scanner_.pos - start_)}; }
  [[nodiscard]] bool at_end() const { return scanner_.token[0] == '\0'; }
  /// Brackets are always tokens by themselves.
  [[nodiscard]] bool at_bracket(char bracket) const { return scanner_.token[0] == bracket; }
  [[noreturn]] void fail(ErrorId id) { domain_.fail(id, text(), start_); }

  Value assignment() {
    if (scanner_.tokenType == TokenType::variable) {
      const std::string_view name = text();
      next();
      if (text() == "=") {
        next();
        const Value value = binary(Level::logic);
        domain_.assign(name, value);
        return value;
      }
      scanner_.pos = name.data();
      next();
    }
    return binary(Level::logic);
  }

  /// A chain of operators that bind at least as tightly as `loosest`.
  Value binary(Level loosest) {
    Value left = prefixed();
    for (;;) {
      const Operator op = operator_;
      const Level level = level_of(op);
      if (level < loosest) return left;
      next();
      const Value right = level == Level::power ? prefixed() : binary(static_cast<Level>(static_cast<int>(level) + 1));
      left = domain_.apply(op, left, right);
    }
  }

  /// At most one prefix, and it binds tighter than anything behind the value.
  Value prefixed() {
    Value value = prefix_and_value();
    while (operator_ == Operator::factorial) {
      next();
      value = domain_.apply(Operator::factorial, value, Value{});
    }
    return value;
  }

  Value prefix_and_value() {
    if (operator_ == Operator::subtract) {
      next();
      return domain_.negated(called());
    }
    if (operator_ == Operator::factorial) {
      next();
      return domain_.inverted(called());
    }
    return called();
  }

  /// A function has one argument, whose brackets are those of any value.
  Value called() {
    if (scanner_.tokenType != TokenType::function) return single();
    const std::string_view name = text();
    next();
    const Value argument = single();
    const Function* const function = find_function(name);
    if (function == nullptr) domain_.fail(ErrorId::unknown_function, name, name.data());
    return domain_.call(*function, argument);
  }

  Value single() {
    if (at_bracket('(')) return bracketed();
    if (scanner_.tokenType == TokenType::number) {
      const Value value = domain_.number(text());
      next();
      return value;
    }
    if (scanner_.tokenType == TokenType::variable) {
      const std::string_view name = text();
      const double* const constant = find_constant(name);
      const Value value = constant != nullptr ? domain_.constant(*constant) : domain_.variable(name);
      next();
      return value;
    }
    fail(at_end() ? ErrorId::unexpected_end : ErrorId::value_expected);
  }

  Value bracketed() {
    if (++nesting_ > deepest_nesting) domain_.exceed(Bound::nesting, start_);
    next();
    const Value value = binary(Level::logic);
    if (!at_bracket(')')) fail(ErrorId::parenthesis_missing);
    --nesting_;
    next();
    return value;
  }

  Scanner& scanner_;
  Domain& domain_;
  const char* start_ = nullptr;  // of the current token
  Operator operator_ = Operator::none;
  int nesting_ = 0;
};

}  // namespace base::expressions
