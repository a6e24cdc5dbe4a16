#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

#include "tools/ky/rehearse/rehearse.h"

namespace bench {
namespace {

/// All that `ky rehearse` does, from the machine's file to the files that it leaves.
void rehearse_edition(benchmark::State& state) {
  workbench::RehearseOptions options;
  options.machine = std::string(KY_SOURCE_FOLDER) + "/samples/machines/suite-installed.json";
  options.out = std::string(KY_BINARY_FOLDER) + "/bench-rehearsal";
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    if (workbench::rehearse(options, out, err) != 0) state.SkipWithError("the rehearsal failed");
  }
}
BENCHMARK(rehearse_edition)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
