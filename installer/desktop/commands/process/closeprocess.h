#pragma once

#include <cstdint>
#include <string>

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"
#include "platform/ports/types.h"

namespace ky {

/// Ends one process that is found by the beginning of its executable's name: runs a close program, waits for the
/// process, and terminates it when the time is up. Neither its path nor its signature is looked at: the first process
/// in the snapshot whose name begins so is taken. `CCloseProcessesCommand` is the careful counterpart.
///
/// Deliberately outside the standard shape: where the process has no name, is not running or cannot be opened, the
/// guard stays entered and `executed` unset. The same thread may enter again, another one is refused from then on, and
/// `GetNextIndex` warns. Readers of the log know these ends by that warning.
///
/// Attributes: command (path, required; empty: terminate at once; expanded twice), process (beginning of the name, case
///   counts; expanded), args (not expanded), currentDir (expanded), waitAmount (decimal milliseconds or INFINITE in any
///   case, required). What expands keeps its expansion; what does not stays as it is.
/// Keys read: the variables in command, process and currentDir
/// Keys written: none
/// Results: always 0, also when another thread is inside. A load gives 1 where command or waitAmount is missing.
class CCloseProcess final : public Destroyable<CCloseProcess, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  /// False where the run ends early, with the guard still entered.
  [[nodiscard]] bool Run();
  void ExpandFields();
  void Close(ports::Handle handle) const;
  void AskAndAwait(ports::Handle handle) const;
  [[nodiscard]] std::wstring CommandLine() const;

  HeapString process, command, args, currentDir;
  std::uint32_t waitAmount = 0;
};

}  // namespace ky
