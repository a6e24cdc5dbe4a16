#include "host/commands/runcommandcommand.h"

#include "host/commands/attribute_reader.h"
#include "host/open_handle.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/process/desktop_launch.h"
#include "platform/ports/codes.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace host {

namespace {

constexpr wchar_t log_name[] = L"RunCommand";

const wchar_t* null_if_empty(const std::wstring& text) {
  return text.empty() ? nullptr : text.c_str();
}

/// A launch that fails without a reason is still no success.
ports::ErrorCode failure_of(ports::ErrorCode code) {
  return code == 0 ? ports::code::gen_failure : code;
}

}  // namespace

/// The texts as they are at this run.
struct CRunCommandCommand::Launch {
  std::wstring program;
  std::wstring arguments;
  std::wstring folder;
};

std::wstring command_line_of(const std::wstring& program, const std::wstring& arguments) {
  std::wstring line = program.starts_with(L'"') ? program : L'"' + program + L'"';
  if (!arguments.empty()) line += L' ' + arguments;
  return line;
}

std::uint32_t CRunCommandCommand::LoadCiphered(ky::AttributeMap** map) {
  const AttributeReader reader(map);
  if (const std::uint32_t failure = reader.load_base(*this); failure != 0) return failure;
  if (!reader.text(L"command", command)) return ports::code::invalid_parameter;
  (void)reader.text(L"args", args);
  (void)reader.text(L"currentDir", currentDir);
  waitAmount = reader.integer(L"waitAmount").value_or(0);
  silent = reader.flag(L"silent");
  useShell = reader.flag(L"useShell");
  runAsLimitedUser = reader.flag(L"runAsLimitedUser");
  return ports::code::success;
}

std::uint32_t CRunCommandCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return ky::InStandardShape(*this, guard, log_name, [this] { return Run(); });
}

std::uint32_t CRunCommandCommand::Run() const {
  Launch launch;
  if (ky::ExpandVariables(command, launch.program) != ports::code::success ||
      ky::ExpandVariables(args, launch.arguments) != ports::code::success ||
      ky::ExpandVariables(currentDir, launch.folder) != ports::code::success) {
    ky::Trace(L"%i: %s Error: '%s' '%s' '%s' names an undefined variable.\n", index, log_name, command.c_str(),
              args.c_str(), currentDir.c_str());
    return ports::code::gen_failure;
  }
  if (launch.program.empty()) {
    ky::Trace(L"%i: %s Error: there is no program.\n", index, log_name);
    return ports::code::invalid_parameter;
  }
  ky::Trace(L"%i: %s '%s' '%s' in '%s'.\n", index, log_name, launch.program.c_str(), launch.arguments.c_str(),
            launch.folder.c_str());

  if (runAsLimitedUser) {
    // The shell starts it and hands no process back, so there is nothing to wait for.
    const bool taken =
        base::process::ShellExecuteAsDesktopUser(launch.program, launch.arguments, launch.folder, L"open");
    if (!taken) ky::Trace(L"%i: %s Error: no desktop took the program.\n", index, log_name);
    return taken ? ports::code::success : ports::code::gen_failure;
  }
  ports::Handle process = ports::Handle::null;
  const std::uint32_t failure = useShell ? StartByShell(launch, process) : StartProcess(launch, process);
  if (failure != ports::code::success) {
    ky::Trace(L"%i: %s Error: the launch failed. Error %u.\n", index, log_name, failure);
    return failure;
  }
  return process == ports::Handle::null ? ports::code::success : WaitFor(process);
}

std::uint32_t CRunCommandCommand::StartProcess(const Launch& launch, ports::Handle& process) const {
  const ports::System& system = ports::system();
  const std::wstring line = command_line_of(launch.program, launch.arguments);
  ports::CreatedProcess created;
  if (!system.processes.create(line.c_str(), null_if_empty(launch.folder), silent ? ports::creation_flag::no_window : 0,
                               created)) {
    return failure_of(system.errors.last());
  }
  (void)system.waits.close(created.thread);
  process = created.process;
  return ports::code::success;
}

std::uint32_t CRunCommandCommand::StartByShell(const Launch& launch, ports::Handle& process) const {
  const ports::System& system = ports::system();
  ports::ShellRequest request;
  request.file = launch.program.c_str();
  request.arguments = null_if_empty(launch.arguments);
  request.directory = null_if_empty(launch.folder);
  request.show = !silent;
  if (!system.processes.shell_execute(request, process)) return failure_of(system.errors.last());
  return ports::code::success;
}

std::uint32_t CRunCommandCommand::WaitFor(ports::Handle process) const {
  const ports::System& system = ports::system();
  const OpenHandle closer(system.waits, process);
  if (waitAmount == 0) return ports::code::success;
  const std::uint32_t limit = waitAmount < 0 ? ports::infinite : static_cast<std::uint32_t>(waitAmount);
  switch (system.waits.wait({&process, 1}, false, limit)) {
    case ports::wait_result::object_0: {
      std::uint32_t code = 0;
      if (system.processes.exit_code(process, code)) {
        ky::Trace(L"%i: %s the program ended with %u.\n", index, log_name, code);
      }
      return ports::code::success;
    }
    case ports::wait_result::timeout:
      ky::Trace(L"%i: %s the program has not ended in time.\n", index, log_name);
      return ports::code::wait_timeout;
    default:
      return failure_of(system.errors.last());
  }
}

}  // namespace host
