#pragma once

#include "installer/desktop/commands/base/heap_string.h"
#include "installer/utils/base/expressions/scanner.h"

namespace ky {

/// Evaluates one line of arithmetic whose variables are the store's `int_` keys: read as 32-bit integers, and written,
/// by an assignment, as the value cut to one. Used once, on its caller's stack.
class CExpressionParser {
 public:
  explicit CExpressionParser(const char* expression);
  virtual ~CExpressionParser();
  CExpressionParser(const CExpressionParser&) = delete;
  CExpressionParser& operator=(const CExpressionParser&) = delete;

  /// The value; 0 where the text does not parse, which the log tells. A part of 128 characters or more, brackets nested
  /// too deeply and a remainder that faults stop the process.
  [[nodiscard]] double Evaluate();

 private:
  NarrowHeapString expr;
  base::expressions::Scanner scanner;  // of `expr`
  double result = 0.0;
};

}  // namespace ky
