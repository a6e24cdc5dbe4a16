#include "platform/record/recording_tasks.h"

#include <utility>

#include "platform/ports/codes.h"
#include "platform/record/paths.h"

namespace record {

ports::Result RecordingTasks::folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) {
  const ports::Result result = inner_.folder(service, path, out);
  const KeptError kept(errors_);
  if (!ports::succeeded(result)) return result;
  std::wstring place = path == nullptr ? L"" : path;
  if (!place.starts_with(L'\\')) place.insert(0, 1, L'\\');
  const ports::Lock lock(mutex_);
  folders_.insert_or_assign(out, std::move(place));
  return result;
}

std::wstring RecordingTasks::path_of(ports::TaskFolder folder, const wchar_t* name) {
  const ports::Lock lock(mutex_);
  const auto found = folders_.find(folder);
  return joined(found == folders_.end() ? L"\\" : found->second, name == nullptr ? L"" : name);
}

ports::Result RecordingTasks::remove(ports::TaskFolder folder, const wchar_t* name) {
  std::wstring path;
  {
    const KeptError kept(errors_);
    path = path_of(folder, name);
    ledger_.watch_task(path);
  }
  const ports::Result result = inner_.remove(folder, name);
  ledger_.add_deletion(Ledger::Subject::task, "task", path, ports::code::of_result(result),
                       [this, path] { return look_at_task(system_, path); });
  return result;
}

void RecordingTasks::release(ports::TaskFolder folder) {
  {
    const KeptError kept(errors_);
    const ports::Lock lock(mutex_);
    folders_.erase(folder);
  }
  inner_.release(folder);
}

}  // namespace record
