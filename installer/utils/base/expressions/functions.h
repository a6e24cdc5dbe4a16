#pragma once

#include <string_view>

namespace base::expressions {

/// A function of one number. Out of its domain it gives what the runtime gives.
struct Function {
  std::string_view name;  // in capitals
  double (*evaluate)(double argument);
};

/// In any case; null where there is none.
[[nodiscard]] const Function* find_function(std::string_view name);

/// "E" and "PI", in any case; null for any other name, which is a variable's.
[[nodiscard]] const double* find_constant(std::string_view name);

}  // namespace base::expressions
