#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/open_handle.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace host {

struct FolderRemovalOptions {
  bool recursive = false;
  /// What cannot go now is booked to go at the system's next start.
  bool delete_after_reboot = false;
  /// A file that cannot go now is moved into the folder for temporary files first.
  bool move_to_temp = false;
};

/// The folders without which the system does not live, in plain text. False where it does not tell them.
[[nodiscard]] bool find_protected_folders(const ports::System& system, std::vector<std::wstring>& out);

/// Deletes one folder and what is in it, and follows no link on the way: every part of the path is opened as itself,
/// from the drive's root down, and stays open, so that nobody can put a link in its place while something below it
/// goes; and each has to be one that the folder before it lists. A link inside the folder goes as a link; what it
/// points at stays. Deleting and moving go by handle, booking for the next start by path.
class FolderRemoval {
 public:
  /// `protected_folders` are compared by file identity as well, since a path has more than one spelling.
  FolderRemoval(const ports::System& system, const FolderRemovalOptions& options,
                std::span<const std::wstring> protected_folders)
      : system_(system), options_(options), protected_(protected_folders) {}

  /// `steps` as `decide_folder` gives them. 0 where the folder is gone, was not there, or was moved or booked as the
  /// options allow; stopped_on_symlink (a link among the ancestors; nothing is deleted), directory_name_invalid (a
  /// file), directory_not_empty (without `recursive`), invalid_parameter (a protected folder); otherwise the code of
  /// the first thing that stays. What can go goes, even if something else stays.
  [[nodiscard]] ports::ErrorCode remove(std::span<const std::wstring> steps);

 private:
  [[nodiscard]] ports::ErrorCode hold(const std::wstring& folder, std::vector<OpenHandle>& held);
  [[nodiscard]] ports::ErrorCode remove_top(const std::wstring& path, ports::Handle parent);
  void remove_children(const std::wstring& folder, ports::Handle handle);
  void remove_child(const std::wstring& path, const ports::FolderRow& listed, ports::Handle parent);
  /// For what did not open for erasing. A folder in use stays, but what is in it goes.
  void cannot_open(const std::wstring& path, bool folder, std::uint64_t index, ports::Handle parent);
  /// Deletes what is open; `path` is for the log, and for booking once it is closed.
  void remove_open(OpenHandle file, const std::wstring& path, const ports::FileInformation& information,
                   ports::Handle parent);
  void stays(const std::wstring& path, bool folder, ports::ErrorCode code, ports::Handle parent);
  void note_failure(const std::wstring& path, ports::ErrorCode code);
  [[nodiscard]] bool put_aside(const std::wstring& path, bool folder, ports::Handle parent);
  [[nodiscard]] bool move_to_temporary(const std::wstring& path, ports::Handle parent, std::wstring& moved);
  [[nodiscard]] OpenHandle open(const std::wstring& path, std::uint32_t access,
                                std::uint32_t share = ports::file_share::read | ports::file_share::write);
  /// Looks at what was opened below `parent`, which has to be listed there. `index` is its number where that was listed
  /// before.
  [[nodiscard]] ports::ErrorCode inspect(const OpenHandle& file, ports::Handle parent, std::uint64_t index,
                                         ports::FileInformation& out);
  [[nodiscard]] ports::ErrorCode rows_of(ports::Handle folder, std::vector<ports::FolderRow>& all);
  [[nodiscard]] bool lists(ports::Handle folder, std::uint64_t index);
  [[nodiscard]] bool is_protected(const OpenHandle& folder);

  const ports::System& system_;
  FolderRemovalOptions options_;
  std::span<const std::wstring> protected_;
  ports::ErrorCode first_failure_ = 0;
};

}  // namespace host
