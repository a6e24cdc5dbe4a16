#pragma once

#include <cstdint>

#include "ky/install_command.h"

namespace ky {

/// Deletes the Image File Execution Options keys of a list of executables, each with all that is below it. A key that
/// is not there is an error line with the number 2 as well: usual in a run, and no reason to stop.
///
/// Deliberately outside the standard shape: its lines have no line ends, `executed` stays unset and no end line tells
/// the next index. `GetNextIndex` therefore warns after each run, and readers of the log know the command by it.
///
/// Attributes: none of its own
/// Keys read: String_IfeoExecutables (names without ".exe", with ";" between them)
/// Keys written: none
/// Results: 0, whatever could not be deleted; 1359 when another thread is inside
class CDeleteIfeoKeysCommand final : public Destroyable<CDeleteIfeoKeysCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
};

}  // namespace ky
