#include "installer/utils/base/process/launch.h"

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"

namespace base::process {

LaunchedProcess RunCommandLine(const std::wstring& commandLine, const std::wstring& currentDir) {
  if (commandLine.empty()) return {};
  ports::CreatedProcess created;
  if (!ports::system().processes.create(commandLine.c_str(), currentDir.empty() ? nullptr : currentDir.c_str(),
                                        ports::creation_flag::no_window, created)) {
    return {};
  }
  return {created.process_id, created.thread_id, created.process, created.thread};
}

void CloseLaunched(const LaunchedProcess& launched) {
  const winapi::scoped_handle process(launched.process);
  const winapi::scoped_handle thread(launched.thread);
}

}  // namespace base::process
