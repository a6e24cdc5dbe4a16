#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace reference {

using Variables = std::map<std::string, std::int32_t>;

/// What an evaluation comes to: a value, or an error's message, or the place where the process stops.
struct Outcome {
  double value = 0;
  std::string error;
  std::wstring stop;
  Variables variables;  // afterwards
};

/// Evaluates an expression in another way than the product: with stacks instead of recursion, and sharing no code.
[[nodiscard]] Outcome evaluate(const std::string& text, const Variables& variables);

}  // namespace reference
