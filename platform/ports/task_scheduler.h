#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/types.h"

namespace ports {

enum class TaskService : std::uintptr_t { null = 0 };
enum class TaskFolder : std::uintptr_t { null = 0 };
enum class ScheduledTask : std::uintptr_t { null = 0 };

/// The Task Scheduler 2.0 (ITaskService and its kin). Results are those of COM; everything that is given out is given
/// back with `release`. Only on a thread that has COM initialised. Texts go over as BSTRs: where there is no memory for
/// one, std::bad_alloc leaves the call.
class TaskScheduler {
 public:
  virtual ~TaskScheduler() = default;

  /// CoCreateInstance of CLSID_TaskScheduler in this process. Fails with not_initialized, class_not_registered.
  [[nodiscard]] virtual Result create_service(TaskService& out) = 0;

  /// ITaskService::Connect with four empty arguments: this computer, as the caller. Fails with access_denied as a
  /// result, scheduler_not_running.
  [[nodiscard]] virtual Result connect(TaskService service) = 0;

  /// ITaskService::GetFolder; the root is "\". Fails with file_not_found and, before `connect`,
  /// only_if_connected as results.
  [[nodiscard]] virtual Result folder(TaskService service, const wchar_t* path, TaskFolder& out) = 0;

  /// ITaskFolder::GetTask: finds a name in any case. Fails with file_not_found as a result.
  [[nodiscard]] virtual Result task(TaskFolder folder, const wchar_t* name, ScheduledTask& out) = 0;

  /// IRegisteredTask::get_Name: the name as it was registered.
  [[nodiscard]] virtual Result name(ScheduledTask task, std::wstring& out) = 0;

  /// ITaskFolder::DeleteTask with flags 0. Fails with file_not_found and access_denied as results.
  [[nodiscard]] virtual Result remove(TaskFolder folder, const wchar_t* name) = 0;

  virtual void release(TaskService service) = 0;
  virtual void release(TaskFolder folder) = 0;
  virtual void release(ScheduledTask task) = 0;
};

}  // namespace ports
