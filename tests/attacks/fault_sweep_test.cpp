#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/file_tree.h"
#include "platform/ports/files.h"
#include "tests/attacks/edition_run.h"
#include "tests/attacks/fault_cases.h"
#include "tests/attacks/forked_runs.h"

// Of the build with the address sanitizer; null in others.
extern "C" __attribute__((weak, visibility("default"))) int __lsan_do_recoverable_leak_check();

namespace attacks {
namespace {

const std::string source_folder = KY_SOURCE_FOLDER;

std::string read_whole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The suite as installed, and in the way of its deletion: programs that run, read-only files and files that somebody
/// holds open.
machine::State stubborn_suite() {
  const std::string path = source_folder + "/samples/machines/suite-installed.json";
  machine::State state = machine::Machine::from_json(read_whole(path), path)->state();
  for (machine::NodeId id = 1; id <= state.files.last_node; ++id) {
    const auto found = state.files.nodes.find(id);
    if (found == state.files.nodes.end() || found->second.folder) continue;
    const std::wstring place = machine::path_of(state.files, id);
    if (place.find(L"\\Tavrine\\") == std::wstring::npos) continue;
    machine::FileNode& file = found->second;
    if (place.ends_with(L"KyUI.exe") || place.ends_with(L".dll")) file.images = 1;
    if (id % 4 == 0) file.attributes |= ports::file_attribute::read_only;
    if (id % 11 == 0) file.holds.push_back({ports::file_access::list_directory, ports::file_share::none, 0});
  }
  return state;
}

/// The places of the page's table, each in backquotes at the beginning of a row.
std::set<std::string> listed_stops() {
  const std::string page = read_whole(source_folder + "/docs/stops.md");
  const std::regex row("\\n\\| `([^`]+)`");
  std::set<std::string> places;
  for (std::sregex_iterator at(page.begin(), page.end(), row), end; at != end; ++at) places.insert((*at)[1]);
  return places;
}

/// The listed place that a stop's text begins with; empty for none.
std::string place_of(const std::string& text, const std::set<std::string>& places) {
  for (const std::string& place : places) {
    if (text.starts_with(place + ": ")) return place;
  }
  return {};
}

/// A stop's text begins with its place, except where the machine itself stops.
std::string told(const ports::StopReason& reason) {
  const std::string text = base::strings::to_utf8(reason.text);
  if (reason.kind == ports::StopKind::step_limit) return "!! endless, " + text;
  if (reason.kind == ports::StopKind::deadlock) return "!! deadlock, " + text;
  return text;
}

/// How many calls of one operation are tried; KY_SWEEP_CALLS=0 tries them all.
std::uint64_t calls_tried() {
  const char* const text = std::getenv("KY_SWEEP_CALLS");
  const std::uint64_t most = text == nullptr ? 8 : std::strtoull(text, nullptr, 10);
  return most == 0 ? ~std::uint64_t{0} : most;
}

struct Tally {
  std::uint64_t calls = 0;
  std::size_t runs = 0;
  std::map<std::string, std::size_t> endings;
};

void print(const std::vector<Tally>& tallies, std::uint64_t most) {
  std::cout << "Fault sweep over the edition's script; at most " << most << " calls of an operation beside the first\n";
  std::string unreached;
  for (const faults::Contract& row : faults::contracts()) {
    const Tally& tally = tallies[static_cast<std::size_t>(row.operation)];
    if (tally.calls == 0) {
      unreached.append(" ").append(row.name);
      continue;
    }
    std::cout << row.name << ": " << tally.calls << " calls, " << tally.runs << " runs\n";
    for (const auto& [ending, count] : tally.endings) std::cout << "    " << count << " x " << ending << '\n';
  }
  std::cout << "Never reached:" << unreached << '\n';
}

/// What was there before and is gone.
std::set<std::wstring> gone(const std::vector<record::Change>& changes) {
  std::set<std::wstring> paths;
  for (const record::Change& change : changes) {
    if (change.before && !change.after) paths.insert(change.path);
  }
  return paths;
}

class FaultSweep : public ::testing::Test {
 protected:
  /// A run without faults: how often it calls each operation, and what it deletes.
  void measure() {
    const auto look = [this](const faults::FaultySystem& faulty, const std::vector<record::Change>& changes) {
      for (const faults::Contract& row : faults::contracts()) calls_.push_back(faulty.calls(row.operation));
      deleted_ = gone(changes);
      for (const machine::Program& program : suite_.programs) {
        for (const machine::Effect& effect : program.effects) {
          if (effect.kind == machine::EffectKind::delete_file) deleted_.insert(effect.path);  // else the script does
        }
      }
      return std::string();
    };
    const auto stopped = [](const ports::StopReason& reason) { ADD_FAILURE() << "stopped unasked: " << told(reason); };
    ASSERT_EQ(run_.once([](faults::FaultySystem&) {}, stopped, look), "finished, return code 0");
    ASSERT_FALSE(deleted_.empty());
  }

  std::string run_case(const FaultCase& fault, const Leave& leave) {
    std::string ending = run_.once(
        [&fault](faults::FaultySystem& faulty) {
          faulty.fail(fault.operation, fault.call, fault.for_good, fault.code);
        },
        [this, &leave](const ports::StopReason& reason) {
          ++unchecked_;
          check_leaks(told(reason), leave);
          leave(told(reason));
        },
        [this](const faults::FaultySystem&, const std::vector<record::Change>& changes) {
          for (const std::wstring& path : gone(changes)) {
            if (!deleted_.contains(path)) return " !! deleted what is not its own: " + base::strings::to_utf8(path);
          }
          return std::string();
        });
    if (++unchecked_ == runs_a_check) check_leaks(ending, leave);
    return ending;
  }

  /// Looking for leaks takes longer than a run: so it is done for some runs at once, and where a child ends.
  void check_leaks(const std::string& ending, const Leave& leave) {
    if (__lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0) {
      leave("!! leak, in this run or one of the " + std::to_string(unchecked_ - 1) + " before it: " + ending);
    }
    unchecked_ = 0;
  }

  static constexpr int runs_a_check = 10;
  int unchecked_ = 0;
  std::vector<std::uint64_t> calls_;
  std::set<std::wstring> deleted_;
  const machine::State suite_ = stubborn_suite();
  const EditionRun run_{suite_};
};

TEST_F(FaultSweep, EveryFailedCallEndsInAReturnCodeOrAtAListedStop) {
  ASSERT_NO_FATAL_FAILURE(measure());
  const std::uint64_t most = calls_tried();
  std::vector<FaultCase> cases;
  for (const faults::Contract& row : faults::contracts()) {
    const auto some = cases_of(row, calls_[static_cast<std::size_t>(row.operation)], most);
    cases.insert(cases.end(), some.begin(), some.end());
  }
  const auto results = run_forked(
      cases.size(),
      [&](std::size_t number, const Leave& leave) {
        std::string ending = run_case(cases[number], leave);
        if (number + children_at_once >= cases.size()) check_leaks(ending, leave);
        return ending;
      },
      std::chrono::seconds(20));

  const std::set<std::string> places = listed_stops();
  std::vector<Tally> tallies(calls_.size());
  for (std::size_t number = 0; number < tallies.size(); ++number) tallies[number].calls = calls_[number];
  for (std::size_t number = 0; number < cases.size(); ++number) {
    const ForkedRun& result = results[number];
    std::string ending = result.text;
    if (result.end == ForkedRun::End::crashed) {
      ADD_FAILURE() << told(cases[number]) << ": the process died, " << result.text;
    } else if (result.text.find("!!") != std::string::npos) {
      ADD_FAILURE() << told(cases[number]) << ": " << result.text;
    } else if (result.end == ForkedRun::End::left) {
      const std::string place = place_of(result.text, places);
      EXPECT_FALSE(place.empty()) << told(cases[number]) << ": a stop that is not listed: " << result.text;
      ending = "stopped at \"" + place + "\"";
    }
    Tally& tally = tallies[static_cast<std::size_t>(cases[number].operation)];
    ++tally.runs;
    ++tally.endings[ending];
  }
  print(tallies, most);
}

TEST(ForkedRuns, ARunThatEndsItsProcessDoesNotEndTheOthers) {
  const auto results = run_forked(
      8,
      [](std::size_t number, const Leave& leave) -> std::string {
        if (number == 1 || number == 3) leave("left " + std::to_string(number));
        if (number == 4) _exit(7);
        if (number == 6) std::abort();
        if (number == 7) pause();
        return std::to_string(number);
      },
      std::chrono::seconds(1));
  const char* const texts[] = {"0", "left 1", "2", "left 3", "exit code 7", "5", "signal 6", "signal 14"};
  for (std::size_t number = 0; number < 8; ++number) EXPECT_EQ(results[number].text, texts[number]);
  EXPECT_EQ(results[1].end, ForkedRun::End::left);
  EXPECT_EQ(results[4].end, ForkedRun::End::crashed);
}

}  // namespace
}  // namespace attacks
