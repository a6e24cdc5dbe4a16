#include "installer/desktop/commands/process/closeprocess.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/utils/base/process/launch.h"
#include "installer/utils/base/process/process_snapshot.h"
#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/number.h"
#include "platform/ports/codes.h"
#include "platform/ports/inspection.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"CloseProcess";

/// The process with the right to terminate it or, where that is refused, only with that to wait for it.
winapi::scoped_handle OpenInTwoSteps(std::uint32_t pid) {
  namespace access = ports::process_access;
  const ports::System& system = ports::system();
  winapi::scoped_handle both(system.inspection.open(access::terminate | access::synchronize, pid));
  const ports::ErrorCode refusal = system.errors.last();
  Trace(L"Process handle: %d\n", static_cast<std::int32_t>(static_cast<std::uintptr_t>(both.get())));
  if (both.valid()) return both;
  Trace(L"Step 1: PROCESS_TERMINATE | SYNCHRONIZE Last error: %d\n", refusal);
  winapi::scoped_handle wait_alone(system.inspection.open(access::synchronize, pid));
  if (!wait_alone.valid()) Trace(L"Step 2: SYNCHRONIZE Last error: %d\n", system.errors.last());
  return wait_alone;
}

}  // namespace

std::uint32_t CCloseProcess::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const auto deciphered = [&decrypter](const AttributeReading& reading) {
    return DuplicateString<wchar_t>(DecipherOrStop(decrypter, reading.text.c_str()));
  };
  const AttributeReading program = attributes.Read(L"command");
  if (!program.usable()) return static_cast<std::uint32_t>(program.present() ? program.read : program.found);
  command = deciphered(program);
  if (const auto reading = attributes.Read(L"process"); reading.usable()) process = deciphered(reading);
  if (const auto reading = attributes.Read(L"args"); reading.usable()) args = deciphered(reading);
  if (const auto reading = attributes.Read(L"currentDir"); reading.usable()) {
    currentDir = deciphered(reading);
    if (currentDir[0] == L'\0') currentDir.reset();
  }
  const AttributeReading wait = attributes.Read(L"waitAmount");
  if (!wait.usable()) return static_cast<std::uint32_t>(wait.present() ? wait.read : wait.found);
  const wchar_t* const amount = DecipherOrStop(decrypter, wait.text.c_str());
  waitAmount = base::strings::equal_ignoring_case(amount, L"INFINITE")
                   ? ports::infinite
                   : static_cast<std::uint32_t>(base::strings::to_decimal(amount));
  return ports::code::success;
}

std::uint32_t CCloseProcess::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) {
    Trace(L"Running command : failed\n");
    return ports::code::success;
  }
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  if (!Run()) return ports::code::success;
  EndExecute(*this, log_name);
  guard.Leave();
  Trace(L"Running command : success\n");
  return ports::code::success;
}

bool CCloseProcess::Run() {
  ExpandFields();
  if (!process) {
    Trace(L"Process name is invalid (NULL)");
    Trace(L"Running command : failed\n");
    return false;
  }
  Trace(L"Process name: %s\n", process.get());
  const std::uint32_t pid = base::process::FindProcessIdByPrefix(process.get());
  Trace(L"Process = %s, pid = %d\n", process.get(), pid);
  if (pid == 0) {
    Trace(L"Process:'%s' is not running!\n", process.get());
    Trace(L"Running command : success\n");
    return false;
  }
  const winapi::scoped_handle opened = OpenInTwoSteps(pid);
  if (!opened.valid()) {
    Trace(L"Cannot open process with pid %d\n", pid);
    Trace(L"Running command : failed\n");
    return false;
  }
  Close(opened.get());
  return true;
}

/// The command has a second turn, deliberately: an expanded text that holds a name again is expanded once more.
void CCloseProcess::ExpandFields() {
  for (HeapString* const field : {&command, &process, &command, &currentDir}) {
    wchar_t* expanded = nullptr;
    if (ExpandToNew(field->get(), &expanded) != 0) field->reset(expanded);
  }
}

void CCloseProcess::Close(ports::Handle handle) const {
  if (command && command[0] != L'\0') return AskAndAwait(handle);
  const bool terminated = ports::system().processes.terminate(handle, 0);
  Trace(L"No command line. Process %s terminated = %d\n", process.get(), terminated);
}

/// A close program that does not start is not looked at: the wait goes on all the same.
void CCloseProcess::AskAndAwait(ports::Handle handle) const {
  const ports::System& system = ports::system();
  const std::wstring line = CommandLine();
  Trace(L"RunCommand: %s in folder: %s\n", line.c_str(), currentDir ? currentDir.get() : L"(NULL)");
  base::process::CloseLaunched(base::process::RunCommandLine(line, currentDir ? currentDir.get() : L""));
  const std::uint32_t result = system.waits.wait({&handle, 1}, false, waitAmount);
  if (result == ports::wait_result::timeout) {
    Trace(L"The process: '%s' will be terminated", process.get());
    system.processes.terminate(handle, 0);
  }
  Trace(L"WaitForSingleObject retVal %d", result);
}

std::wstring CCloseProcess::CommandLine() const {
  std::wstring line = L'"' + std::wstring(command.get()) + L'"';
  if (args && args[0] != L'\0') {
    line.append(L" ").append(args.get());
    Trace(L"Command with args:'%s'", line.c_str());
  } else {
    Trace(L"Command without args:'%s'", line.c_str());
  }
  return line;
}

}  // namespace ky
