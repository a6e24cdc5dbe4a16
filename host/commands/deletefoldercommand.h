#pragma once

#include <string>

#include "host/commands/deleting_command.h"
#include "host/deletion/folder_removal.h"

namespace host {

/// Deletes a folder; see `FolderRemoval` for how links are kept out and `decide_folder` for the paths it refuses.
///
/// Attributes: path (text, expanded at each run, required), recursive (flag: what is in it goes too), deleteAfterReboot
///   (flag: what cannot go now goes at the next start), moveToTemp (flag: a file that cannot go now is moved away)
/// Keys read: those that path names
/// Keys written: none
/// Results: 0 where the folder is gone, was absent, or is moved or booked as the flags allow; 31 where path names an
///   undefined variable; 87 for a path that it refuses; 681 for a link among the ancestors; 267 for a file; 145 for a
///   full folder without recursive; otherwise the error of the first thing that stays; 1359 when another thread is
///   inside. A load gives 87 without path.
class CDeleteFolderCommand final : public ky::Destroyable<CDeleteFolderCommand, DeletingCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  [[nodiscard]] std::uint32_t Delete();

  std::wstring path;
  FolderRemovalOptions options;
};

}  // namespace host
