#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/codes.h"
#include "platform/ports/task_scheduler.h"
#include "platform/ports/types.h"

namespace ky {

/// The root folder of the system's task scheduler, for the time of one command and on its thread.
///
/// Where the thread's COM was initialised otherwise before, everything works, but nothing is given back at the end:
/// what this object did not initialise it does not end, deliberately not even its own two references.
///
/// Where there is no memory for a text that the scheduler is given, `winapi::com_error` with E_OUTOFMEMORY leaves both
/// operations.
class WinScheduler {
 public:
  WinScheduler() = default;
  ~WinScheduler();
  WinScheduler(const WinScheduler&) = delete;
  WinScheduler& operator=(const WinScheduler&) = delete;

  /// Initialises COM and connects to this computer's scheduler as the caller. Once. 0, or 31 with the step that failed
  /// in the log and nothing held.
  [[nodiscard]] std::uint32_t Init();

  /// Deletes the task with exactly this name, case included. 0, or 31 without any reason.
  [[nodiscard]] std::uint32_t RemoveTask(const std::wstring& name) const;

 private:
  [[nodiscard]] bool Start();
  /// Gives all back, where `Init` initialised COM.
  void End();

  ports::Result status = ports::code::fail;  // of COM's initialisation
  ports::TaskService service = ports::TaskService::null;
  ports::TaskFolder root_folder = ports::TaskFolder::null;
};

}  // namespace ky
