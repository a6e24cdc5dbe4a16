#include "installer/desktop/commands/tasks/winscheduler.h"

#include <new>

#include "installer/desktop/commands/base/trace.h"
#include "installer/extern/base/include/winapi/com_error.h"
#include "platform/ports/com.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

namespace code = ports::code;

/// Says which call failed.
[[nodiscard]] bool Passed(const wchar_t* call, ports::Result result) {
  if (ports::succeeded(result)) return true;
  Trace(L"[WinScheduler] %s failed = 0x%x\n", call, static_cast<std::uint32_t>(result));
  return false;
}

/// Also passes what an earlier initialisation of the process or thread leaves to be told.
[[nodiscard]] bool PassedOr(ports::Result settled, const wchar_t* call, ports::Result result) {
  if (result != settled && !Passed(call, result)) return false;
  Trace(L"[WinScheduler] %s() status = 0x%x\n", call, static_cast<std::uint32_t>(result));
  return true;
}

/// The result of a call that hands over a text. Where there is no memory for it, COM's exception says so.
template <class Call>
[[nodiscard]] ports::Result WithText(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    throw winapi::com_error(code::no_memory);
  }
}

/// A task that was got, for a scope.
class GotTask {
 public:
  GotTask(ports::TaskScheduler& tasks, ports::TaskFolder folder, const std::wstring& name)
      : tasks_(tasks), got_(ports::succeeded(WithText([&] { return tasks.task(folder, name.c_str(), task_); }))) {}
  ~GotTask() {
    if (got_) tasks_.release(task_);
  }
  GotTask(const GotTask&) = delete;
  GotTask& operator=(const GotTask&) = delete;

  [[nodiscard]] bool IsNamed(const std::wstring& name) const {
    std::wstring told;
    return got_ && ports::succeeded(tasks_.name(task_, told)) && told == name;
  }

 private:
  ports::TaskScheduler& tasks_;
  ports::ScheduledTask task_ = ports::ScheduledTask::null;
  const bool got_;
};

}  // namespace

WinScheduler::~WinScheduler() {
  End();
}

std::uint32_t WinScheduler::Init() {
  if (Start()) return code::success;
  End();
  return code::gen_failure;
}

bool WinScheduler::Start() {
  const ports::System& system = ports::system();
  status = system.com.initialize(ports::ComModel::multithreaded);
  if (!PassedOr(code::changed_mode, L"CoInitializeEx", status)) return false;
  const ports::Result secured =
      system.com.initialize_security(ports::com_security::packet_privacy, ports::com_security::impersonate);
  return PassedOr(code::security_too_late, L"CoInitializeSecurity", secured) &&
         Passed(L"CoCreateInstance", system.tasks.create_service(service)) &&
         Passed(L"Connect", system.tasks.connect(service)) &&
         Passed(L"GetFolder", WithText([&] { return system.tasks.folder(service, L"\\", root_folder); }));
}

void WinScheduler::End() {
  if (!ports::succeeded(status)) return;
  const ports::System& system = ports::system();
  if (root_folder != ports::TaskFolder::null) system.tasks.release(root_folder);
  if (service != ports::TaskService::null) system.tasks.release(service);
  root_folder = ports::TaskFolder::null;
  service = ports::TaskService::null;
  system.com.uninitialize();
  status = code::fail;
}

std::uint32_t WinScheduler::RemoveTask(const std::wstring& name) const {
  if (service == ports::TaskService::null || root_folder == ports::TaskFolder::null || name.empty()) {
    return code::gen_failure;
  }
  ports::TaskScheduler& tasks = ports::system().tasks;
  // The scheduler finds a name in any case, and a path as well: only the very task that was asked for is deleted.
  const GotTask task(tasks, root_folder, name);
  const auto remove = [&] { return tasks.remove(root_folder, name.c_str()); };
  return task.IsNamed(name) && ports::succeeded(WithText(remove)) ? code::success : code::gen_failure;
}

}  // namespace ky
