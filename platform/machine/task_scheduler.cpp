#include "platform/machine/task_scheduler.h"

#include <algorithm>

#include "platform/machine/com.h"
#include "platform/machine/path.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;
using ports::Result;

std::wstring task_folder_path(std::wstring_view path) {
  std::wstring clean;
  for (const std::wstring& part : split_path(path)) clean.append(1, L'\\').append(part);
  return clean;
}

bool has_task_folder(const ScheduledTasks& tasks, std::wstring_view folder) {
  const std::wstring below = std::wstring(folder) + L"\\";
  return folder.empty() || std::any_of(tasks.tasks.begin(), tasks.tasks.end(),
                                       [&below](const auto& entry) { return name_starts_with(entry.first, below); });
}

Result TaskScheduler::create_service(ports::TaskService& out) {
  if (!com_.initialized()) return code::not_initialized;
  const ports::Lock lock(world_.mutex);
  out = static_cast<ports::TaskService>(++last_);
  services_.emplace(out, false);
  return code::ok;
}

Result TaskScheduler::connect(ports::TaskService service) {
  const ports::Lock lock(world_.mutex);
  const auto found = services_.find(service);
  if (found == services_.end()) return code::pointer;
  if (!world_.state.scheduled_tasks.running) return code::scheduler_not_running;
  found->second = true;
  return code::ok;
}

Result TaskScheduler::folder(ports::TaskService service, const wchar_t* path, ports::TaskFolder& out) {
  const ports::Lock lock(world_.mutex);
  const auto found = services_.find(service);
  if (found == services_.end()) return code::pointer;
  if (!found->second) return code::as_result(code::only_if_connected);
  std::wstring folder = task_folder_path(path == nullptr ? L"" : path);
  if (!has_task_folder(world_.state.scheduled_tasks, folder)) return code::as_result(code::file_not_found);
  out = static_cast<ports::TaskFolder>(++last_);
  folders_.emplace(out, std::move(folder));
  return code::ok;
}

std::wstring TaskScheduler::path_of(ports::TaskFolder folder, const wchar_t* name) {
  const auto found = folders_.find(folder);
  const std::wstring below = found == folders_.end() || name == nullptr ? L"" : task_folder_path(name);
  return below.empty() ? L"" : found->second + below;
}

Result TaskScheduler::task(ports::TaskFolder folder, const wchar_t* name, ports::ScheduledTask& out) {
  const ports::Lock lock(world_.mutex);
  const std::wstring path = path_of(folder, name);
  if (path.empty()) return code::as_result(code::path_not_found);
  const Tasks& tasks = world_.state.scheduled_tasks.tasks;
  const auto found = tasks.find(path);
  if (found == tasks.end()) return code::as_result(code::file_not_found);
  out = static_cast<ports::ScheduledTask>(++last_);
  names_.emplace(out, last_part(found->first));
  return code::ok;
}

Result TaskScheduler::name(ports::ScheduledTask task, std::wstring& out) {
  const ports::Lock lock(world_.mutex);
  const auto found = names_.find(task);
  if (found == names_.end()) return code::pointer;
  out = found->second;
  return code::ok;
}

Result TaskScheduler::remove(ports::TaskFolder folder, const wchar_t* name) {
  const ports::Lock lock(world_.mutex);
  const std::wstring path = path_of(folder, name);
  if (path.empty()) return code::as_result(code::path_not_found);
  Tasks& tasks = world_.state.scheduled_tasks.tasks;
  const auto found = tasks.find(path);
  if (found == tasks.end()) return code::as_result(code::file_not_found);
  if (found->second.protect) return code::as_result(code::access_denied);
  tasks.erase(found);
  return code::ok;
}

void TaskScheduler::release(ports::TaskService service) {
  const ports::Lock lock(world_.mutex);
  services_.erase(service);
}

void TaskScheduler::release(ports::TaskFolder folder) {
  const ports::Lock lock(world_.mutex);
  folders_.erase(folder);
}

void TaskScheduler::release(ports::ScheduledTask task) {
  const ports::Lock lock(world_.mutex);
  names_.erase(task);
}

std::size_t TaskScheduler::open_objects() {
  const ports::Lock lock(world_.mutex);
  return services_.size() + folders_.size() + names_.size();
}

}  // namespace machine
