#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/ports/types.h"

namespace ports {

/// What a new thread runs. `run` is called once, on the new thread; the object is destroyed there afterwards.
class ThreadBody {
 public:
  virtual ~ThreadBody() = default;
  virtual void run() = 0;
};

/// Threads. Waits on a thread's handle, and its closing, go through `Waits`.
class Threads {
 public:
  virtual ~Threads() = default;

  /// CreateThread: runs `body` on a new thread, whose id goes to `id`. Null on failure (not_enough_memory).
  [[nodiscard]] virtual Handle start(std::unique_ptr<ThreadBody> body, std::uint32_t& id) = 0;

  /// GetCurrentThreadId.
  [[nodiscard]] virtual std::uint32_t current_id() = 0;

  /// Sleep, in milliseconds; 0 lets others run.
  virtual void sleep(std::uint32_t milliseconds) = 0;
};

/// What a wait answers.
namespace wait_result {
inline constexpr std::uint32_t object_0 = 0;
inline constexpr std::uint32_t timeout = 258;
inline constexpr std::uint32_t failed = 0xFFFFFFFF;
}  // namespace wait_result

/// Events and waits. Times are milliseconds, `infinite` for no limit.
class Waits {
 public:
  virtual ~Waits() = default;

  /// CreateEventW. A name makes one event for all who use it: a second creation succeeds with the last error
  /// already_exists. Null on failure: path_not_found (a bad name), invalid_handle (the name is of something else).
  [[nodiscard]] virtual Handle create_event(bool manual_reset, bool initial_state, const wchar_t* name) = 0;

  /// SetEvent and ResetEvent. Fail with invalid_handle.
  virtual bool set(Handle event) = 0;
  virtual bool reset(Handle event) = 0;

  /// WaitForMultipleObjects over 1 to 64 handles: `object_0` plus the lowest signalled position, or for `all` plus 0
  /// when all are; `timeout`; or `failed` with invalid_handle, access_denied (a process opened without
  /// process_access::synchronize), or invalid_parameter (none, more than 64, doubles with `all`). An event without
  /// manual reset is consumed by the wait that it ends.
  [[nodiscard]] virtual std::uint32_t wait(std::span<const Handle> handles, bool all, std::uint32_t milliseconds) = 0;

  /// CloseHandle, for every `Handle` but a search's. Fails with invalid_handle.
  virtual bool close(Handle handle) = 0;
};

}  // namespace ports
