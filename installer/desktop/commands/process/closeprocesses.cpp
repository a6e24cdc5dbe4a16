#include "installer/desktop/commands/process/closeprocesses.h"

#include <system_error>
#include <utility>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/utils/base/fs/case_sensitive_dir.h"
#include "installer/utils/base/fs/same_file.h"
#include "installer/utils/base/process/desktop_launch.h"
#include "installer/utils/base/process/image_path.h"
#include "installer/utils/base/process/launch.h"
#include "installer/utils/base/process/scoped_privilege.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/number.h"
#include "platform/ports/codes.h"
#include "platform/ports/inspection.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace ky {

namespace {

using base::process::ProcessEntry;

/// `executed`, the end line and the guard, also where an exception leaves the command.
class End {
 public:
  End(CInstallCommand& command, CommandGuard& entered) : leaver_(entered), command_(command) {}
  ~End() {
    command_.executed = true;
    LogStream() << command_.index << L": CloseProcesses End execute. Next command " << command_.GetNextIndex();
  }
  End(const End&) = delete;
  End& operator=(const End&) = delete;

 private:
  const GuardLeaver leaver_;
  CInstallCommand& command_;
};

std::vector<ProcessEntry> RunningProcesses() {
  std::vector<ProcessEntry> rows;
  base::process::ProcessSnapshot snapshot;
  for (snapshot.begin(); !snapshot.at_end(); snapshot.next()) rows.push_back(snapshot.current());
  return rows;
}

}  // namespace

std::uint32_t CCloseProcessesCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  const std::uint32_t base_result = attributes.LoadBase(*this);
  const auto read = [&](const std::wstring& name, std::wstring& out) {
    return attributes.ReadCipheredAttribute(decrypter, name.c_str(), out) == ports::code::success;
  };
  std::wstring text;
  if (!read(L"maxTimeout", text)) return base_result;
  maxTimeout = base::strings::to_integer(text.c_str());
  std::int32_t total = 0;
  if (const ports::Result failure = attributes.Length(total); failure != 0) return static_cast<std::uint32_t>(failure);
  // An upper bound: numbers without attributes cost a look-up.
  for (std::int32_t n = 1; n <= (total - 1) / 3; ++n) {
    const std::wstring number = std::to_wstring(n);
    ProcessToClose entry;
    const bool has_process = read(L"process" + number, entry.process);
    const bool has_cmd = read(L"cmd" + number, entry.cmd);
    const bool has_folder = read(L"currentDir" + number, entry.currentDir);
    entry.limited = read(L"limited" + number, text) && base::strings::to_integer(text.c_str()) != 0;
    if (has_process && has_cmd && has_folder) entries.push_back(std::move(entry));
  }
  return ports::code::success;
}

std::uint32_t CCloseProcessesCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    LogStream() << index << L": CloseProcesses Error: Multiple threads attempting execution.";
    return ports::code::internal_error;
  }
  const End end(*this, guard);
  LogStream() << index << L": CloseProcesses Begin execute.";
  ExpandTargets();
  LogTargets();
  const base::process::ScopedPrivilege debug(L"SeDebugPrivilege");
  LogStream() << index << L": set privilege SE_DEBUG_NAME=" << debug.succeeded();
  std::vector<ProcessEntry> running = RunningProcesses();
  FilterByTargets(targets, running);
  LogStream() << index << L": start close processes. running processes after filtering="
              << static_cast<std::uint32_t>(running.size());
  AwaitAndTerminate(AskAll(running));
  LogStream() << index << L": end close processes";
  return ports::code::success;
}

void CCloseProcessesCommand::ExpandTargets() {
  for (ProcessToClose& entry : entries) {
    const bool expanded = ExpandVariables(entry.currentDir, entry.currentDir) == ports::code::success &&
                          (entry.cmd.empty() || ExpandVariables(entry.cmd, entry.cmd) == ports::code::success);
    if (!expanded) {
      LogStream() << index << L": process='" << entry.process << L"'|'" << entry.currentDir << L"'|'" << entry.cmd
                  << L"' contains a variable that could not be expanded";
      continue;
    }
    std::error_code ignored;
    const bool ignores_case = base::fs::IsCaseSensitiveDir(entry.currentDir.c_str(), ignored) == false;
    targets.Add(ignores_case ? LowerCased(entry.process) : entry.process, {entry.limited, entry.cmd, entry.currentDir});
  }
}

void CCloseProcessesCommand::LogTargets() const {
  LogStream() << index << L": processes to stop:";
  for (const CloseTargets::Row& row : targets.Rows()) {
    for (const CloseTarget& target : row.targets) {
      LogStream() << index << L": process='" << row.key << L"', dir='" << target.currentDir << L"', cmd='" << target.cmd
                  << L"', limited=" << target.limited;
    }
  }
}

std::vector<ports::Handle> CCloseProcessesCommand::AskAll(const std::vector<ProcessEntry>& running) const {
  std::vector<ports::Handle> handles;
  for (const ProcessEntry& row : running) AskOne(row, handles);
  return handles;
}

void CCloseProcessesCommand::AskOne(const ProcessEntry& row, std::vector<ports::Handle>& handles) const {
  std::error_code error;
  const std::wstring path = base::process::GetProcessImagePath(row.pid, error);
  if (path.empty()) {
    LogStream() << index << L": could not get more details about process=" << row.name << L", pid=" << row.pid
                << L", error=" << error.value() << L". this process will be skipped.";
    return;
  }
  const auto found = FindCloseTarget(targets, row.name, path, base::fs::SameFile);
  if (!found) return LogNotOurs(row.name, path);
  namespace access = ports::process_access;
  winapi::scoped_handle process(ports::system().inspection.open(access::terminate | access::synchronize, row.pid));
  if (process.valid()) {
    // From here on the id cannot be recycled; that it was not before has to be seen.
    const std::wstring now = base::process::GetProcessImagePath(row.pid, error);
    if (!base::fs::SameFile(found->file.c_str(), now.c_str())) return LogNotOurs(row.name, now);
    handles.push_back(process.get());
  }
  const ports::Handle handle = process.release();
  LogStream() << index << L": process='" << row.name << L"', pid=" << row.pid << L", handle=" << handle << L", error="
              << base::strings::format(L"%x", ports::system().errors.last());
  Request(*found->target, row.name);
}

void CCloseProcessesCommand::LogNotOurs(const std::wstring& name, const std::wstring& path) const {
  LogStream() << index << L": process=" << name << L", path='" << path
              << L"' has same name but is not recognized. this process will be skipped.";
}

void CCloseProcessesCommand::Request(const CloseTarget& target, const std::wstring& name) const {
  if (target.cmd.empty()) {
    LogStream() << index << L": process='" << name
                << L"', doesn't have a command line - the process will be terminated after the timeout expires.";
  } else if (target.limited) {
    static_cast<void>(base::process::ShellExecuteAsDesktopUser(target.currentDir + name, target.cmd, target.currentDir,
                                                               std::wstring()));
  } else {
    base::process::CloseLaunched(base::process::RunCommandLine(target.cmd, target.currentDir));
  }
}

/// The requests went out before, so that all close side by side. None or more than 64 handles fail the wait at once.
void CCloseProcessesCommand::AwaitAndTerminate(const std::vector<ports::Handle>& handles) const {
  const ports::System& system = ports::system();
  LogStream() << index << L": waiting for " << static_cast<std::uint32_t>(handles.size())
              << L" processes to stop. max_timeout=" << maxTimeout << L"ms";
  if (system.waits.wait(handles, true, static_cast<std::uint32_t>(maxTimeout)) == ports::wait_result::object_0) {
    LogStream() << index << L": all processes were closed correctly";
    return;
  }
  for (const ports::Handle handle : handles) {
    if (system.waits.wait({&handle, 1}, false, 0) == ports::wait_result::object_0) continue;
    LogStream() << index << L": terminate process with handle=" << handle;
    system.processes.terminate(handle, 0);
  }
}

}  // namespace ky
