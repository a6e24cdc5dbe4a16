#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "platform/machine/state.h"
#include "platform/ports/task_scheduler.h"

namespace machine {

class Com;

/// The machine's task scheduler.
class TaskScheduler final : public ports::TaskScheduler {
 public:
  TaskScheduler(World& world, const Com& com) : world_(world), com_(com) {}

  [[nodiscard]] ports::Result create_service(ports::TaskService& out) override;
  [[nodiscard]] ports::Result connect(ports::TaskService service) override;
  [[nodiscard]] ports::Result folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) override;
  [[nodiscard]] ports::Result task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) override;
  [[nodiscard]] ports::Result name(ports::ScheduledTask task, std::wstring& out) override;
  [[nodiscard]] ports::Result remove(ports::TaskFolder folder, const wchar_t* name) override;
  void release(ports::TaskService service) override;
  void release(ports::TaskFolder folder) override;
  void release(ports::ScheduledTask task) override;

  /// How many services, folders and tasks were not given back; a test's leak check.
  [[nodiscard]] std::size_t open_objects();

 private:
  using Tasks = std::map<std::wstring, TaskFacts, NameLess>;
  /// The folder's path and the name as one; empty for a folder that was given back and for an empty name.
  [[nodiscard]] std::wstring path_of(ports::TaskFolder folder, const wchar_t* name) KY_REQUIRES(world_.mutex);

  World& world_;
  const Com& com_;
  std::uintptr_t last_ KY_GUARDED_BY(world_.mutex) = 0;
  std::map<ports::TaskService, bool> services_ KY_GUARDED_BY(world_.mutex);  // connected or not
  std::map<ports::TaskFolder, std::wstring> folders_ KY_GUARDED_BY(world_.mutex);
  std::map<ports::ScheduledTask, std::wstring> names_ KY_GUARDED_BY(world_.mutex);
};

}  // namespace machine
