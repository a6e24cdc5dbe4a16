#pragma once

#include <cstdint>
#include <string>

namespace ports {

/// Why the process has to stop.
enum class StopKind : std::uint32_t {
  invalid_parameter,  // a value does not fit its buffer
  null_value,         // a value that the logic needs is not there
  assertion,          // an assertion failed
  processor_fault,    // an arithmetic fault
  step_limit,         // a rehearsal's limit on steps
  deadlock,           // a rehearsal where nothing can go on
  own_end,            // a rehearsal where the process terminates itself
};

/// The place and the reason, for people.
struct StopReason {
  StopKind kind;
  std::wstring text;
};

/// The one door through which the process stops.
class Termination {
 public:
  virtual ~Termination() = default;

  /// Never returns and unwinds nothing. For real it raises a runtime fault, so that a crash handler sees it; in a
  /// rehearsal it hands the reason to the workbench, which writes all outputs and ends with exit code 1.
  [[noreturn]] virtual void stop(const StopReason& reason) = 0;

  /// Counts one step of a loop whose length a script decides. A rehearsal stops at its limit; for real it does nothing.
  virtual void step() = 0;
};

}  // namespace ports
