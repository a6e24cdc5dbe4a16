#include "platform/record/recording_processes.h"

#include <initializer_list>

namespace record {

namespace {

std::wstring words(std::initializer_list<const wchar_t*> parts) {
  std::wstring text;
  for (const wchar_t* part : parts) {
    if (part == nullptr || *part == L'\0') continue;
    if (!text.empty()) text += L' ';
    text += part;
  }
  return text;
}

}  // namespace

bool RecordingProcesses::create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
                                ports::CreatedProcess& out) {
  if (!inner_.create(command_line, directory, flags, out)) return false;
  ledger_.name(out.process, command_line);
  ledger_.add_action("process-started", command_line);
  return true;
}

bool RecordingProcesses::terminate(ports::Handle process, std::uint32_t exit_code) {
  const bool taken = inner_.terminate(process, exit_code);
  const KeptError kept(errors_);
  book_.terminated(process, taken ? 0 : errors_.last());
  if (!taken) return false;
  ledger_.add_action("process-ended", ledger_.named(process).value_or(L"?"));
  return true;
}

bool RecordingProcesses::shell_execute(const ports::ShellRequest& request, ports::Handle& process) {
  if (!inner_.shell_execute(request, process)) return false;
  const std::wstring text = words({request.verb, request.file, request.arguments});
  if (process != ports::Handle::null) ledger_.name(process, text);
  ledger_.add_action("process-started-by-shell", text);
  return true;
}

ports::Result RecordingProcesses::execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file,
                                                     const wchar_t* arguments, const wchar_t* directory,
                                                     const wchar_t* operation) {
  const ports::Result result = inner_.execute_on_desktop(desktop, file, arguments, directory, operation);
  if (ports::succeeded(result)) ledger_.add_action("process-started-on-desktop", words({operation, file, arguments}));
  return result;
}

bool RecordingWaits::close(ports::Handle handle) {
  // Before the close: afterwards the number may already mean another thread's new handle.
  const std::optional<std::wstring> name = ledger_.named(handle);
  const std::optional<ProcessBook::Hold> hold = book_.forget(handle);
  ledger_.forget(handle);
  const bool closed = inner_.close(handle);
  if (!closed && name) ledger_.name(handle, *name);
  if (!closed && hold) book_.restore(handle, *hold);
  return closed;
}

}  // namespace record
