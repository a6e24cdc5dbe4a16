// Runs all benchmarks side by side and prints what counts: each figure against its floor, or against its limit.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

/// Keeps the medians beside what the console shows.
class Medians final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> medians;  // microseconds
};

struct Target {
  const char* what;
  const char* measured;
  const char* floor;  // null: the limit is in microseconds
  double limit;
  bool times_faster = false;  // than the floor: the limit is the least
};

constexpr Target targets[] = {
    {"script to loaded commands, times its floor", "load_script", "load_script_floor", 2.5},
    {"script to loaded commands, microseconds", "load_script", nullptr, 2000},
    {"expansion of ten variables, times a single pass", "expand_ten", "expand_ten_floor", 3},
    {"one expression, times faster than muParser", "evaluate_once", "evaluate_once_muparser", 20, true},
    {"the check of the edition's script, microseconds", "check_edition", nullptr, 50'000},
    {"the check of 10,000 commands, microseconds", "check_long", nullptr, 200'000},
    {"one value out of XML, times parser and query alone", "read_xml_value", "read_xml_value_floor", 2.5},
    {"sealed and flushed records, times encryption and a write", "log_sealed", "log_sealed_floor", 1 / 0.7},
    {"the same, times a log in the clear", "log_sealed", "log_in_the_clear", 1 / 0.33},
    {"scrambled and flushed records, times the same", "log_scrambled", "log_in_the_clear", 1 / 0.7},
    {"two threads' sealed records, times one's", "log_sealed_by_two", "log_sealed", 2 / 1.6},
    {"a sealed log read in file order, times deciphering", "log_read_in_order", "log_read_floor", 2},
    {"5,000 processes filtered by name, times a hash join", "filter_processes", "filter_processes_floor", 3},
    {"ten times the processes filtered, times", "filter_ten_times", "filter_processes", 13},
    {"targets found by identity, times a hash join", "find_targets", "find_targets_floor", 3},
    {"ten times the processes looked at, times", "find_ten_times", "find_targets", 13},
    {"the edition's whole rehearsal, microseconds", "rehearse_edition", nullptr, 100'000},
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string repetitions = "--benchmark_repetitions=9";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::string aggregates = "--benchmark_report_aggregates_only=true";
  for (std::string* const argument : {&repetitions, &interleaving, &aggregates}) arguments.push_back(argument->data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  std::printf("\nmedians of nine, measured side by side\n");
  int missed = 0;
  for (const Target& target : targets) {
    if (medians.medians.count(target.measured) == 0) continue;
    const double floor = target.floor == nullptr ? 1 : medians.medians[target.floor];
    const double measured = medians.medians[target.measured];
    const double figure = target.times_faster ? floor / measured : measured / floor;
    const bool met = target.times_faster ? figure >= target.limit : figure <= target.limit;
    missed += met ? 0 : 1;
    std::printf("%-52s %10.2f  (at %s %g)%s\n", target.what, figure, target.times_faster ? "least" : "most",
                target.limit, met ? "" : "  MISSED");
  }
  return missed == 0 ? 0 : 1;
}
