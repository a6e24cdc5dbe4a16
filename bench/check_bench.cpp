#include <benchmark/benchmark.h>

#include <string>

#include "bench/desk_world.h"
#include "tools/ky/check/checker.h"
#include "tools/ky/desk_engines.h"

namespace bench {
namespace {

void check(benchmark::State& state, const std::string& text) {
  workbench::DeskEngines desk;
  for (auto _ : state) {
    if (!check::check_text("script.xml", text, host::built_in_script_key(), desk.engines()).empty()) {
      state.SkipWithError("the script is not clean");
    }
  }
}

void check_edition(benchmark::State& state) {
  check(state, read_source("resources/script.xml"));
}
BENCHMARK(check_edition)->Unit(benchmark::kMicrosecond);

/// Ten thousand commands with loops, jumps and 5,000 variables.
void check_long(benchmark::State& state) {
  std::string text = "<install version=\"1.0\"><commands>\n";
  for (int n = 0; n < 2'500; ++n) {
    const std::string name = std::to_string(n);
    text += "<SetVariable id=\"again" + name + "\" var=\"Path" + name + "\" strValue=\"C:\\Tavrine\\\"/>\n";
    text += "<DeleteFolder path=\"[Path" + name + "]\" errVar=\"Result" + name + "\"/>\n";
    text += "<Jump condition=\"Result" + name + "\" target=\"#again" + name + "\"/>\n";
    text += "<Evaluate expression=\"Result" + name + " + Result" + std::to_string(n / 2) + "\" resultVar=\"Sum\"/>\n";
  }
  check(state, text + "</commands></install>");
}
BENCHMARK(check_long)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
