#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "installer/desktop/commands/process/close_targets.h"
#include "installer/utils/base/process/process_snapshot.h"
#include "ky/install_command.h"
#include "platform/ports/types.h"

namespace ky {

/// Ends the running programs of the product: asks each to close with a command line of its own, gives them all one
/// shared limit, and terminates what is left. A process counts as ours only where its file is proved to be the one that
/// the script names; its path is read once more when it is open, since an id may have been recycled in between.
///
/// Deliberately outside the standard shape: its lines are built on a `LogStream`, and the end line, which has no full
/// stop, also comes where an exception leaves the command. The handles that are waited for stay open until the host
/// ends, so that no id among them is used again. A second run adds all targets once more.
///
/// Attributes: maxTimeout (milliseconds, required; -1 without limit), and for each number n from 1 on, gaps allowed, up
///   to a third of the element's attributes: process<n> (as a snapshot shows it), cmd<n> (may be empty; expanded),
///   currentDir<n> (with its closing backslash; expanded), limited<n> (asked as the desktop user: cmd<n> is then the
///   program's arguments alone)
/// Keys read: the variables in cmd<n> and currentDir<n>
/// Keys written: none
/// Results: 0, whatever became of the processes; 1359 when another thread is inside. Where the system gives no list of
///   processes a `std::system_error` leaves the command. A load without maxTimeout gives the base's result and has no
///   entries.
class CCloseProcessesCommand final : public Destroyable<CCloseProcessesCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  struct ProcessToClose {
    bool limited = false;
    std::wstring cmd;
    std::wstring currentDir;
    std::wstring process;
  };

  void ExpandTargets();
  void LogTargets() const;
  [[nodiscard]] std::vector<ports::Handle> AskAll(const std::vector<base::process::ProcessEntry>& running) const;
  void AskOne(const base::process::ProcessEntry& row, std::vector<ports::Handle>& handles) const;
  void LogNotOurs(const std::wstring& name, const std::wstring& path) const;
  void Request(const CloseTarget& target, const std::wstring& name) const;
  void AwaitAndTerminate(const std::vector<ports::Handle>& handles) const;

  CloseTargets targets;
  std::vector<ProcessToClose> entries;
  std::int32_t maxTimeout = 0;
};

}  // namespace ky
