#include "installer/utils/base/expressions/functions.h"

#include <algorithm>
#include <cmath>

#include "installer/utils/base/expressions/extended.h"

namespace base::expressions {

namespace {

constexpr Function functions[] = {
    {"ABS", [](double x) { return std::fabs(x); }},
    {"SQRT", [](double x) { return std::sqrt(x); }},
    {"EXP", [](double x) { return rounded(std::exp(Extended{x})); }},
    {"LOG", [](double x) { return rounded(std::log(Extended{x})); }},
    {"LOG10", [](double x) { return rounded(std::log10(Extended{x})); }},
    {"SIN", [](double x) { return rounded(std::sin(Extended{x})); }},
    {"COS", [](double x) { return rounded(std::cos(Extended{x})); }},
    {"TAN", [](double x) { return rounded(std::tan(Extended{x})); }},
    {"ASIN", [](double x) { return rounded(std::asin(Extended{x})); }},
    {"ACOS", [](double x) { return rounded(std::acos(Extended{x})); }},
    {"ATAN", [](double x) { return rounded(std::atan(Extended{x})); }},
};

struct Constant {
  std::string_view name;
  double value;
};
constexpr Constant constants[] = {{"E", 2.718281828459045}, {"PI", 3.141592653589793}};

constexpr bool is_name(std::string_view capitals, std::string_view text) {
  return std::equal(capitals.begin(), capitals.end(), text.begin(), text.end(), [](char capital, char given) {
    return capital == (given >= 'a' && given <= 'z' ? static_cast<char>(given - 'a' + 'A') : given);
  });
}

}  // namespace

const Function* find_function(std::string_view name) {
  for (const Function& function : functions) {
    if (is_name(function.name, name)) return &function;
  }
  return nullptr;
}

const double* find_constant(std::string_view name) {
  for (const Constant& constant : constants) {
    if (is_name(constant.name, name)) return &constant.value;
  }
  return nullptr;
}

}  // namespace base::expressions
