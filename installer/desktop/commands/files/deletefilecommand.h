#pragma once

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"

namespace ky {

/// Deletes one file; if told to, moves one that cannot go now to the temporary folder and books its deletion at the
/// next start.
///
/// Deliberately outside the standard shape: it takes no guard, does not set `executed` and traces neither begin nor
/// end. `GetNextIndex` therefore warns after each run, and readers of the log know the command by it.
///
/// Attributes: pathFile (path, required, expanded at each run), renameFile (1 to move and book)
/// Keys read: the variables in pathFile
/// Keys written: none
/// Results: always 0, also when the file is still there. A load gives 1 where pathFile is missing.
class CDeleteFileCommand final : public Destroyable<CDeleteFileCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void ExpandPath();
  void MoveAsideAndBook() const;

  HeapString path;
  bool rename = false;
};

}  // namespace ky
