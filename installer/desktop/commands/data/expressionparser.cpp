#include "installer/desktop/commands/data/expressionparser.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/desktop/commands/data/parseerror.h"
#include "installer/utils/base/expressions/arithmetic.h"
#include "installer/utils/base/expressions/grammar.h"
#include "installer/utils/base/stop.h"
#include "installer/utils/base/strings/format.h"

namespace ky {

namespace {

namespace expressions = base::expressions;

/// The key of an integer variable that a token names.
class VariableKey {
 public:
  explicit VariableKey(std::string_view name) {
    int_prefix.copy(text_, int_prefix.size());
    text_[int_prefix.size() + name.copy(text_ + int_prefix.size(), expressions::Scanner::capacity - 1)] = '\0';
  }
  [[nodiscard]] Key<std::int32_t> key() const { return {text_}; }

 private:
  char text_[int_prefix.size() + expressions::Scanner::capacity];
};

/// The grammar's domain: numbers, and variables in the store.
class StoredArithmetic {
 public:
  using Value = double;

  double number(std::string_view text) { return expressions::to_number(text); }
  double constant(double value) { return value; }
  double variable(std::string_view name) { return Get(VariableKey(name).key()); }
  double negated(double value) { return -value; }
  double inverted(double value) { return expressions::inverted(value); }
  double apply(expressions::Operator op, double left, double right) {
    if (op == expressions::Operator::remainder && expressions::remainder_faults(left, right)) {
      base::stop_processor_fault(
          L"expression: remainder",
          base::strings::format(L"%i %% %i", expressions::to_integer(left), expressions::to_integer(right)));
    }
    return expressions::apply_operator(op, left, right);
  }
  double call(const expressions::Function& function, double argument) { return function.evaluate(argument); }
  void assign(std::string_view name, double value) { Put(VariableKey(name).key(), expressions::to_integer(value)); }

  [[noreturn]] void fail(expressions::ErrorId id, std::string_view argument, const char*) {
    throw CParseError(0, 0, static_cast<std::int32_t>(id), std::string(argument).c_str());
  }
  [[noreturn]] void exceed(expressions::Bound bound, const char* at) {
    base::stop_invalid_parameter(
        bound == expressions::Bound::nesting ? L"expression: nested too deeply" : L"expression: part too long",
        base::strings::format(L"%S", at));
  }
};

void Log(const CParseError& error) {
  if (error.row == -1) {
    Trace(L"[Expression Parser] Error: %S (col %i)\n", error.Message(), error.col);
  } else {
    Trace(L"[Expression Parser] Error: %S (ln %i, col %i)\n", error.Message(), error.row, error.col);
  }
}

}  // namespace

CExpressionParser::CExpressionParser(const char* expression)
    : expr(DuplicateString<char>(expression)), scanner(expr.get()) {}

CExpressionParser::~CExpressionParser() = default;

double CExpressionParser::Evaluate() {
  StoredArithmetic domain;
  try {
    result = expressions::Grammar<StoredArithmetic>(scanner, domain).parse();
  } catch (const CParseError& error) {
    Log(error);
  }
  return result;
}

}  // namespace ky
