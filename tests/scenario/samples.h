#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace scenario {

/// One rehearsal of the samples: a machine, and a script or the edition's own.
struct Sample {
  std::string name;
  std::string machine;
  std::string script;  // empty: the edition's
  int exit_code;       // of the rehearsal
};

inline void PrintTo(const Sample& sample, std::ostream* out) {
  *out << sample.name;
}

inline const std::vector<Sample>& samples() {
  static const std::vector<Sample> all = {
      {"edition-whole", "suite-installed", "", 0},
      {"edition-nothing", "nothing-installed", "", 0},
      {"edition-half-removed", "suite-half-removed", "", 0},
      {"closing", "workshop", "closing", 3},
      {"conditions", "workshop", "conditions", 0},
      {"deletions", "workshop", "deletions", 3},
      {"documents", "workshop", "documents", 0},
      {"expressions", "workshop", "expressions", 0},
      {"jumps", "workshop", "jumps", 0},
      {"logging", "workshop", "logging", 0},
      {"return-code", "workshop", "return-code", 1},
      {"stop-undefined-text", "workshop", "stop-undefined-text", 1},
      {"xml-values", "workshop", "xml-values", 0},
      {"each-user", "cookbook", "each-user", 0},
      {"close-and-remove", "cookbook", "close-and-remove", 0},
      {"old-logs", "cookbook", "old-logs", 0},
      {"at-restart", "cookbook", "at-restart", 3},
      {"components", "cookbook", "components", 0},
  };
  return all;
}

}  // namespace scenario
