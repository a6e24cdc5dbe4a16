#include "tools/ky/rehearse/clock_keys.h"

#include <algorithm>
#include <vector>

#include "installer/utils/base/expressions/syntax_check.h"
#include "ky/keys.h"

namespace rehearsal {

namespace {

/// What one `Evaluate` reads and writes, as keys.
struct Computation {
  std::vector<std::string> reads;
  std::vector<std::string> writes;
};

Computation computation_of(const script::PlainElement& element, const std::string& expression) {
  Computation found;
  for (const auto& use : base::expressions::check_syntax(expression).variables) {
    (use.written ? found.writes : found.reads).push_back(ky::IntKey(use.name).name);
  }
  if (const auto* const result = element.find("resultVar")) found.writes.push_back(ky::IntKey(result->value).name);
  return found;
}

}  // namespace

std::set<std::string> clock_keys(const script::PlainScript& script) {
  std::set<std::string> keys;
  std::vector<Computation> computations;
  for (const script::PlainElement& element : script.elements) {
    if (element.name == "GetDateTime") {
      if (const auto* const variable = element.find("var")) keys.insert(ky::IntKey(variable->value).name);
    } else if (element.name == "Evaluate") {
      if (const auto* const expression = element.find("expression")) {
        computations.push_back(computation_of(element, expression->value));
      }
    }
  }
  for (std::size_t before = 0; before != keys.size();) {
    before = keys.size();
    for (const Computation& computation : computations) {
      const auto from_clock = [&keys](const std::string& key) { return keys.contains(key); };
      if (std::any_of(computation.reads.begin(), computation.reads.end(), from_clock)) {
        keys.insert(computation.writes.begin(), computation.writes.end());
      }
    }
  }
  return keys;
}

}  // namespace rehearsal
