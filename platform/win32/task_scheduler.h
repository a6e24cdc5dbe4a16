#pragma once

#include "platform/ports/task_scheduler.h"

namespace win32 {

/// What it gives out are references of the system's own objects.
class TaskScheduler final : public ports::TaskScheduler {
 public:
  ports::Result create_service(ports::TaskService& out) override;
  ports::Result connect(ports::TaskService service) override;
  ports::Result folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) override;
  ports::Result task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) override;
  ports::Result name(ports::ScheduledTask task, std::wstring& out) override;
  ports::Result remove(ports::TaskFolder folder, const wchar_t* name) override;
  void release(ports::TaskService service) override;
  void release(ports::TaskFolder folder) override;
  void release(ports::ScheduledTask task) override;
};

}  // namespace win32
