#pragma once

#include <cstdint>
#include <string>

#include "ky/install_command.h"

namespace ky {

/// Deletes one task from the root folder of the system's task scheduler.
///
/// Deliberately outside the standard shape: `executed` stays unset and no end line tells the next index.
/// `GetNextIndex` therefore warns after each run, and readers of the log know the command by it.
///
/// Where there is no memory for a text that the scheduler is given, `winapi::com_error` leaves `Execute`; the guard and
/// COM are left then too.
///
/// Attributes: name (of the task, without a folder, in its own case; expanded and kept so)
/// Keys read: the variables in name
/// Keys written: none
/// Results: 0, also where the task is still there; 1359 when another thread is inside. A load without name gives the
///   base's result, and the command removes nothing.
class CRemoveScheduledTaskCommand final : public Destroyable<CRemoveScheduledTaskCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void Remove() const;

  std::wstring name;
};

}  // namespace ky
