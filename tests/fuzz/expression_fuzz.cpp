#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <limits>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/data/expressionparser.h"
#include "installer/utils/base/expressions/syntax_check.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/termination.h"
#include "tests/fuzz/reference_expression.h"
#include "tests/support/bare_machine.h"
#include "tests/support/kept_log.h"

namespace {

using reference::Outcome;
using reference::Variables;

/// Lets a stop be looked at; the product's door unwinds nothing.
class ThrownStop final : public ports::Termination {
 public:
  [[noreturn]] void stop(const ports::StopReason& reason) override { throw reason; }
  void step() override {}
};

/// What the parser reaches: a store of nothing but variables and a log.
struct World {
  World() {
    ports::bind(system);
    ky::BindStore(&get, &put);
  }
  static std::uint64_t get(const char* key);
  static void put(const char* key, std::uint64_t value);

  Variables variables;
  std::vector<std::wstring> lines;
  support::KeptLog log{lines};
  ThrownStop termination;
  support::BareMachine desk;
  ports::System system = ports::with(desk.system, termination);
};

World& world() {
  static World made;
  return made;
}

std::uint64_t World::get(const char* key) {
  if (key == std::string_view("SelfFree_LoggerApi")) return ky::ToStored<ky::ILoggerApi*>(&world().log);
  const auto found = world().variables.find(key + 4);
  return found == world().variables.end() ? 0 : ky::ToStored(found->second);
}

void World::put(const char* key, std::uint64_t value) {
  world().variables[key + 4] = ky::FromStored<std::int32_t>(value);
}

[[noreturn]] void differ(const std::string& text, const char* what) {
  std::cerr << what << " differs: " << text << '\n';
  std::abort();
}

/// Bytes that begin no token mean whole words, so that the fuzzer meets them early. 0xFF stays as it is.
std::string expression_of(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* words[] = {
      "AND",   "OR",   "XOR",  "PI",   "E",    "big",   "three", "minus", "=",      "sqrt(",      "LOG(",
      "abs(",  "exp(", "sin(", "cos(", "tan(", "asin(", "Acos(", "atan(", "log10(", "foo(",       "2147483647",
      "1e308", "0.5",  " - 1", "<<",   ">>",   "==",    "!=",    "<=",    ">=",     "2147483648", "(((((((("};
  std::string text;
  for (const std::uint8_t byte : std::span(data, size)) {
    if (byte >= 0x80 && byte != 0xFF) {
      text += words[(byte - 0x80) % std::size(words)];
    } else {
      text += static_cast<char>(byte);
    }
  }
  return text;
}

bool same(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

Outcome evaluate(const std::string& text, std::wstring& log) {
  Outcome outcome;
  world().lines.clear();
  try {
    outcome.value = ky::CExpressionParser(text.c_str()).Evaluate();
  } catch (const ports::StopReason& reason) {
    outcome.stop = reason.text;
  }
  log = std::accumulate(world().lines.begin(), world().lines.end(), std::wstring());
  outcome.variables = world().variables;
  return outcome;
}

void check_syntax_agrees(const std::string& text, const Variables& before, const Outcome& expected) {
  const base::expressions::SyntaxCheck check = base::expressions::check_syntax(text);
  if (expected.stop == L"expression: remainder") return;
  if (!expected.stop.empty()) {
    if (check.error.empty()) differ(text, "the check of what stops");
    return;
  }
  if (check.error != expected.error) differ(text, "the check's error");
  if (!check.error.empty()) return;
  const Outcome cut = reference::evaluate(text.substr(0, check.end), before);
  if (!cut.error.empty() || !same(cut.value, expected.value)) {
    differ(text, "the value without its tail");
  }
}

}  // namespace

/// Any text comes to the same value, error, stop and variables as in an evaluation that shares no code with the
/// product's, and the syntax check tells the same error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = expression_of(data, size);
  const std::string seen = text.c_str();  // a terminator ends it
  const Variables before = {{"big", std::numeric_limits<std::int32_t>::min()}, {"three", 3}, {"minus", -1}, {"a", 7}};
  const Outcome expected = reference::evaluate(seen, before);
  world().variables = before;
  std::wstring log;
  const Outcome outcome = evaluate(text, log);
  if (outcome.stop.substr(0, expected.stop.size()) != expected.stop || outcome.stop.empty() != expected.stop.empty()) {
    differ(text, "the stop");
  }
  const std::wstring line = L"[Expression Parser] Error: %S (ln 0, col 0)\n";
  const std::wstring told = base::strings::format(line.c_str(), expected.error.c_str());
  if (log != (expected.error.empty() ? L"" : told)) differ(text, "the log");
  if (!same(outcome.value, expected.value)) differ(text, "the value");
  if (outcome.variables != expected.variables) differ(text, "a variable");
  check_syntax_agrees(seen, before, expected);
  return 0;
}
