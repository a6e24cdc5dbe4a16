#include "platform/win32/processes.h"

#include <windows.h>

#include <shellapi.h>

#include <string>

#include "platform/win32/handles.h"

namespace win32 {

bool Processes::create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
                       ports::CreatedProcess& out) {
  std::wstring writable = command_line;  // The call writes into it.
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION created{};
  if (!CreateProcessW(nullptr, writable.data(), nullptr, nullptr, FALSE, flags, nullptr, directory, &startup,
                      &created)) {
    return false;
  }
  out = {ported(created.hProcess), ported(created.hThread), created.dwProcessId, created.dwThreadId};
  return true;
}

bool Processes::exit_code(ports::Handle process, std::uint32_t& out) {
  DWORD code = 0;
  if (!GetExitCodeProcess(native(process), &code)) return false;
  out = code;
  return true;
}

bool Processes::terminate(ports::Handle process, std::uint32_t exit_code) {
  return TerminateProcess(native(process), exit_code) != FALSE;
}

std::uint32_t Processes::current_id() {
  return GetCurrentProcessId();
}

bool Processes::shell_execute(const ports::ShellRequest& request, ports::Handle& process) {
  SHELLEXECUTEINFOW info{};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
  info.lpVerb = request.verb;
  info.lpFile = request.file;
  info.lpParameters = request.arguments;
  info.lpDirectory = request.directory;
  info.nShow = request.show ? SW_SHOWNORMAL : SW_HIDE;
  if (!ShellExecuteExW(&info)) return false;
  process = ported(info.hProcess);
  return true;
}

}  // namespace win32
