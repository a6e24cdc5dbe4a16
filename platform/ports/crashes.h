#pragma once

#include <cstdint>

#include "platform/ports/types.h"

namespace ports {

/// What a fault left behind (EXCEPTION_POINTERS); only handed on.
struct ExceptionPointers;

/// MINIDUMP_TYPE.
enum class DumpKind : std::uint32_t { normal = 0, full_memory = 2 };

/// What is called on a fault that nobody caught, on the thread that it happened on.
class CrashFilter {
 public:
  virtual ~CrashFilter() = default;
  /// Gives what the filter answers; 1 (EXCEPTION_EXECUTE_HANDLER) ends the process.
  [[nodiscard]] virtual std::int32_t on_crash(ExceptionPointers* exception) = 0;
};

/// The process's handlers for faults, and dumps. On the machine a fault is what goes through `Termination::stop`, and a
/// dump is a file that begins as one does and holds the reason in words.
class Crashes {
 public:
  virtual ~Crashes() = default;

  /// SetUnhandledExceptionFilter; also std::set_terminate with a handler that raises a fault, since an exception of
  /// C++ that nobody catches does not reach the filter otherwise. `filter` must live as long as the process. False
  /// where no filter was set before, which is no failure.
  virtual bool set_filter(CrashFilter& filter) = 0;

  /// _set_invalid_parameter_handler with a handler that writes to address 0, so that the filter sees the fault. False
  /// where none was set before.
  virtual bool set_invalid_parameter_handler() = 0;

  /// MiniDumpWriteDump of this process into an open file, with the calling thread's id beside `exception`.
  virtual bool write_dump(Handle file, DumpKind kind, ExceptionPointers* exception) = 0;
};

}  // namespace ports
