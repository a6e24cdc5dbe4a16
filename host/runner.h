#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/script/program.h"

namespace ports {
class Termination;
}

namespace host {

class Store;

/// What one step of a run came to.
struct StepOutcome {
  bool run = false;          // false: its condition was not met
  std::uint32_t result = 0;  // of `Execute`
  std::int32_t next = -1;    // the index that the run goes on at
};

/// Follows a run, on its thread.
class RunObserver {
 public:
  virtual ~RunObserver() = default;
  virtual void before(const ProgramStep& /*step*/) {}
  /// Not called for the command whose exception ends the run.
  virtual void after(const ProgramStep& /*step*/, const StepOutcome& /*outcome*/) {}
};

enum class RunEnd {
  finished,   // past the last index
  stopped,    // a command failed and put `int_ReturnCode` itself
  exception,  // an exception left a command
  lost,       // a command sent the run to an index that no command has
};

struct RunResult {
  RunEnd end = RunEnd::finished;
  std::size_t position = 0;  // of the last command in the program
  std::string reason;        // for `exception` and `lost`
};

/// Runs `program` from its first command, one at a time on the calling thread: condition, `Execute` with both words 0,
/// next index. `int_` and the command's `errVar` receive the result of every `Execute`. A result alone stops nothing;
/// the run stops where a command fails and put a non-zero `int_ReturnCode` while it ran. Each command counts as one
/// step of `termination`.
///
/// Where an exception or a lost run ends it and `int_ReturnCode` is 0, that becomes 1359: such a run is no success.
[[nodiscard]] RunResult run(const Program& program, Store& store, ports::Termination& termination,
                            RunObserver& observer);

}  // namespace host
