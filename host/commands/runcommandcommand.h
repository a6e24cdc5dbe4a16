#pragma once

#include <cstdint>
#include <string>

#include "ky/install_command.h"
#include "platform/ports/types.h"

namespace host {

/// Starts a program and waits for its end if told to. What the program ends with goes to the log alone: programs have
/// no common idea of a failure.
///
/// Attributes: command (text, required: the program), args (text), currentDir (text; absent or empty: the host's own),
///   waitAmount (milliseconds; absent or 0: no wait, negative: without limit), silent (flag: no window), useShell
///   (flag: through the shell, which also opens documents), runAsLimitedUser (flag: under the desktop's token instead
///   of the host's; wins over useShell, cannot be waited for). The texts are expanded at each run.
/// Keys read: those that the texts name
/// Keys written: none
/// Results: 0 where the program runs or, when it is waited for, has ended; 258 where it has not ended in time and runs
///   on; 31 where a text names an undefined variable or no desktop takes the program; 87 for an empty command;
///   otherwise the error of the launch or the wait; 1359 when another thread is inside. A load gives 87 without
///   command.
class CRunCommandCommand final : public ky::Destroyable<CRunCommandCommand, ky::CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  struct Launch;

  [[nodiscard]] std::uint32_t Run() const;
  [[nodiscard]] std::uint32_t StartProcess(const Launch& launch, ports::Handle& process) const;
  [[nodiscard]] std::uint32_t StartByShell(const Launch& launch, ports::Handle& process) const;
  [[nodiscard]] std::uint32_t WaitFor(ports::Handle process) const;

  std::wstring command;
  std::wstring args;
  std::wstring currentDir;
  std::int32_t waitAmount = 0;
  bool silent = false;
  bool useShell = false;
  bool runAsLimitedUser = false;
};

/// The command line of `program` with `arguments`: the program in quotes unless it has them already.
[[nodiscard]] std::wstring command_line_of(const std::wstring& program, const std::wstring& arguments);

}  // namespace host
