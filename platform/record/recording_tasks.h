#pragma once

#include <map>
#include <string>

#include "platform/ports/mutex.h"
#include "platform/ports/task_scheduler.h"
#include "platform/record/ledger.h"

namespace record {

/// A task scheduler whose removals go into the ledger. Nothing here touches the thread's last error.
class RecordingTasks final : public ports::TaskScheduler {
 public:
  RecordingTasks(const ports::System& inner, Ledger& ledger)
      : inner_(inner.tasks), errors_(inner.errors), ledger_(ledger), system_(inner) {}

  ports::Result folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) override;
  ports::Result remove(ports::TaskFolder folder, const wchar_t* name) override;
  void release(ports::TaskFolder folder) override;

  ports::Result create_service(ports::TaskService& out) override { return inner_.create_service(out); }
  ports::Result connect(ports::TaskService service) override { return inner_.connect(service); }
  ports::Result task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) override {
    return inner_.task(folder, name, out);
  }
  ports::Result name(ports::ScheduledTask task, std::wstring& out) override { return inner_.name(task, out); }
  void release(ports::TaskService service) override { inner_.release(service); }
  void release(ports::ScheduledTask task) override { inner_.release(task); }

 private:
  /// The full path of a task in an open folder.
  [[nodiscard]] std::wstring path_of(ports::TaskFolder folder, const wchar_t* name);

  ports::TaskScheduler& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
  const ports::System& system_;
  ports::Mutex mutex_;
  std::map<ports::TaskFolder, std::wstring> folders_ KY_GUARDED_BY(mutex_);
};

}  // namespace record
