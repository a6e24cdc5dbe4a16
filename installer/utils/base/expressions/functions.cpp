#include "installer/utils/base/expressions/functions.h"

#include <algorithm>
#include <cmath>

namespace base::expressions {

namespace {

constexpr Function functions[] = {
    {"ABS", [](double x) { return std::fabs(x); }},    {"EXP", [](double x) { return std::exp(x); }},
    {"SQRT", [](double x) { return std::sqrt(x); }},   {"LOG", [](double x) { return std::log(x); }},
    {"LOG10", [](double x) { return std::log10(x); }}, {"SIN", [](double x) { return std::sin(x); }},
    {"COS", [](double x) { return std::cos(x); }},     {"TAN", [](double x) { return std::tan(x); }},
    {"ASIN", [](double x) { return std::asin(x); }},   {"ACOS", [](double x) { return std::acos(x); }},
    {"ATAN", [](double x) { return std::atan(x); }},
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
