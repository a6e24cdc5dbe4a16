#include "tests/fuzz/reference_expression.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace reference {

namespace {

struct Failure {
  std::string error;
};
struct Stop {
  std::wstring place;
};

enum class Kind { end, sign, number, name, called_name };

struct Piece {
  Kind kind = Kind::end;
  std::string text;
};

const std::string digits = "0123456789";
const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";

/// Cuts a text into pieces, from its front.
class Cutter {
 public:
  explicit Cutter(std::string text) : text_(std::move(text)) {}

  Piece cut() {
    at_ = std::min(text_.find_first_not_of(" \t", at_), text_.size());
    if (at_ == text_.size()) return {};
    const char first = text_[at_];
    if (std::string("-()").find(first) != std::string::npos) return take(Kind::sign, at_ + 1);
    for (const auto& [set, kind] : {std::pair("&|<>=+/*%^!", Kind::sign), std::pair("0123456789.", Kind::number)}) {
      if (std::string(set).find(first) == std::string::npos) continue;
      const std::size_t end = std::min(text_.find_first_not_of(set, at_), text_.size());
      return take(kind, kind == Kind::number ? behind_exponent(end) : end);
    }
    if (letters.find(first) == std::string::npos) {
      throw Failure{"Syntax error in part \"" + take(Kind::sign, text_.size()).text + "\""};
    }
    const std::size_t end = std::min(text_.find_first_not_of(letters + digits, at_), text_.size());
    const std::size_t next = text_.find_first_not_of(" \t", end);
    const bool called = next != std::string::npos && text_[next] == '(';
    return take(called ? Kind::called_name : Kind::name, end);
  }

 private:
  [[nodiscard]] std::size_t behind_exponent(std::size_t at) const {
    if (at == text_.size() || (text_[at] != 'E' && text_[at] != 'e')) return at;
    ++at;
    if (at < text_.size() && (text_[at] == '+' || text_[at] == '-')) ++at;
    return std::min(text_.find_first_not_of(digits, at), text_.size());
  }

  Piece take(Kind kind, std::size_t end) {
    if (end - at_ > 127) throw Stop{L"expression: part too long"};
    Piece piece{kind, text_.substr(at_, end - at_)};
    at_ = end;
    return piece;
  }

  std::string text_;
  std::size_t at_ = 0;
};

/// The processor's own conversion.
std::int32_t whole(double value) {
  return _mm_cvttsd_si32(_mm_set_sd(value));
}

double factorial(double of) {
  const std::int32_t n = whole(of);
  if (n < 0) return n;
  if (n > 170) return std::numeric_limits<double>::infinity();
  double product = 1;
  for (int factor = n; factor > 1; --factor) product *= factor;
  return product;
}

double remainder(std::int64_t left, std::int64_t right) {
  if (right == 0 || left / right > std::numeric_limits<std::int32_t>::max()) throw Stop{L"expression: remainder"};
  return static_cast<double>(left % right);
}

double times_power_of_two(std::int64_t value, std::int32_t exponent) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value * (std::int64_t{1} << (exponent & 31))));
}

double over_power_of_two(double value, std::int32_t exponent) {
  return std::floor(value / std::pow(2, exponent & 31));
}

struct Binary {
  int level;
  std::function<double(double, double)> apply;
};

const std::map<std::string, Binary> binaries = {
    {"AND", {2, [](double a, double b) { return whole(a) & whole(b); }}},
    {"OR", {2, [](double a, double b) { return whole(a) | whole(b); }}},
    {"<<", {2, [](double a, double b) { return times_power_of_two(whole(a), whole(b)); }}},
    {">>", {2, [](double a, double b) { return over_power_of_two(whole(a), whole(b)); }}},
    {"==", {3, std::equal_to<double>()}},
    {"!=", {3, std::not_equal_to<double>()}},
    {"<", {3, std::less<double>()}},
    {">", {3, std::greater<double>()}},
    {"<=", {3, std::less_equal<double>()}},
    {">=", {3, std::greater_equal<double>()}},
    {"+", {4, std::plus<double>()}},
    {"-", {4, std::minus<double>()}},
    {"*", {5, std::multiplies<double>()}},
    {"/", {5, std::divides<double>()}},
    {"%", {5, [](double a, double b) { return remainder(whole(a), whole(b)); }}},
    {"XOR", {5, [](double a, double b) { return whole(a) ^ whole(b); }}},
    {"^", {6, [](double a, double b) { return static_cast<double>(powl(a, b)); }}},
};

using Real = long double (*)(long double);
template <Real function>
double in_long(double argument) {
  return static_cast<double>(function(argument));
}
const std::map<std::string, double (*)(double)> functions = {
    {"ABS", [](double x) { return x < 0 || std::signbit(x) ? -x : x; }},
    {"SQRT", [](double x) { return std::sqrt(x); }},
    {"EXP", in_long<static_cast<Real>(std::exp)>},
    {"LOG", in_long<static_cast<Real>(std::log)>},
    {"LOG10", in_long<static_cast<Real>(std::log10)>},
    {"SIN", in_long<static_cast<Real>(std::sin)>},
    {"COS", in_long<static_cast<Real>(std::cos)>},
    {"TAN", in_long<static_cast<Real>(std::tan)>},
    {"ASIN", in_long<static_cast<Real>(std::asin)>},
    {"ACOS", in_long<static_cast<Real>(std::acos)>},
    {"ATAN", in_long<static_cast<Real>(std::atan)>},
};

std::string in_capitals(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return text;
}

/// What stands before a value and waits for it.
struct Before {
  char prefix = ' ';
  std::string function;
};

/// What stands before an opening bracket, or before the whole: values that wait for their right operands.
struct Chain {
  std::vector<double> values;
  std::vector<std::string> operators;
  Before before;
};

class Evaluation {
 public:
  Evaluation(const std::string& text, Variables& variables) : cutter_(text), variables_(variables) { read(); }

  double run() {
    if (piece_.kind == Kind::end) throw Failure{"Empty expression"};
    const std::string assigned = assigned_name();
    const double value = chain_of_values();
    if (!assigned.empty()) variables_[assigned] = whole(value);
    return value;
  }

 private:
  void read() {
    piece_ = ahead_ ? *ahead_ : cutter_.cut();
    ahead_.reset();
  }

  /// The name before a "=" at the beginning; both are then taken.
  std::string assigned_name() {
    if (piece_.kind != Kind::name) return {};
    ahead_ = cutter_.cut();
    if (ahead_->text != "=") return {};
    std::string name = piece_.text;
    read();
    read();
    return name;
  }

  double chain_of_values() {
    chains_.assign(1, Chain());
    for (;;) {
      double value = first_value();
      // A value may end any number of brackets.
      while (!goes_on_behind(value)) {
        const Chain ended = std::move(chains_.back());
        chains_.pop_back();
        if (chains_.empty()) return ended.values.front();
        if (piece_.text != ")") throw Failure{"Parenthesis ) missing"};
        value = ended.values.front();
        read();
      }
    }
  }

  /// Opens brackets up to the next number or name.
  double first_value() {
    for (;;) {
      Before& before = chains_.back().before;
      before = Before();
      if (piece_.text == "-" || piece_.text == "!") {
        before.prefix = piece_.text[0];
        read();
      }
      if (piece_.kind == Kind::called_name) {
        before.function = piece_.text;
        read();
      }
      if (piece_.text != "(") break;
      if (chains_.size() > 512) throw Stop{L"expression: nested too deeply"};
      chains_.emplace_back();
      read();
    }
    if (piece_.kind != Kind::number && piece_.kind != Kind::name) {
      throw Failure{piece_.kind == Kind::end ? "Unexpected end of expression" : "Value expected"};
    }
    const double value = piece_.kind == Kind::number ? std::strtod(piece_.text.c_str(), nullptr) : named(piece_.text);
    read();
    return value;
  }

  double named(const std::string& name) {
    const std::string capitals = in_capitals(name);
    if (capitals == "E") return std::exp(1.0);
    if (capitals == "PI") return std::acos(-1.0);
    const auto found = variables_.find(name);
    return found == variables_.end() ? 0 : found->second;
  }

  /// Takes a value into the innermost chain. True where an operator follows, which wants another one.
  bool goes_on_behind(double value) {
    Chain& chain = chains_.back();
    value = completed(chain.before, value);
    for (; piece_.text == "!"; read()) value = factorial(value);
    chain.values.push_back(value);
    const auto next = binaries.find(piece_.text);
    const int level = next == binaries.end() ? 0 : next->second.level;
    while (!chain.operators.empty() && binaries.at(chain.operators.back()).level >= level) reduce(chain);
    if (level == 0) return false;
    chain.operators.push_back(piece_.text);
    read();
    return true;
  }

  static double completed(const Before& before, double value) {
    if (!before.function.empty()) {
      const auto function = functions.find(in_capitals(before.function));
      if (function == functions.end()) throw Failure{"Unknown function " + before.function};
      value = function->second(value);
    }
    if (before.prefix == '-') return -value;
    if (before.prefix == '!') return whole(value) == 0 ? 1 : 0;
    return value;
  }

  static void reduce(Chain& chain) {
    const double right = chain.values.back();
    chain.values.pop_back();
    chain.values.back() = binaries.at(chain.operators.back()).apply(chain.values.back(), right);
    chain.operators.pop_back();
  }

  Cutter cutter_;
  Variables& variables_;
  Piece piece_;
  std::optional<Piece> ahead_;
  std::vector<Chain> chains_;
};

}  // namespace

Outcome evaluate(const std::string& text, const Variables& variables) {
  Outcome outcome;
  outcome.variables = variables;
  try {
    outcome.value = Evaluation(text, outcome.variables).run();
  } catch (const Failure& failure) {
    outcome.error = failure.error;
  } catch (const Stop& stop) {
    outcome.stop = stop.place;
  }
  return outcome;
}

}  // namespace reference
