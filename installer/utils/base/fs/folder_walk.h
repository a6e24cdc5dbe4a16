#pragma once

#include <string>
#include <string_view>

#include "platform/ports/files.h"
#include "platform/ports/types.h"

namespace base::fs {

/// `name` below `folder`, with one backslash between them where `folder` does not end in a separator or in a drive's
/// colon.
[[nodiscard]] std::wstring joined(std::wstring_view folder, std::wstring_view name);

/// Whether the path leads to a folder, links followed. False also where that cannot be told.
[[nodiscard]] bool is_folder(const std::wstring& path);

/// A walk over what stands right in a folder, in the file system's order. What comes and goes meanwhile may be seen or
/// not. One thread at a time.
class FolderWalk {
 public:
  /// Stands on the first entry. Throws `filesystem_error` where the folder cannot be read.
  explicit FolderWalk(std::wstring folder);
  FolderWalk(const FolderWalk&) = delete;
  FolderWalk& operator=(const FolderWalk&) = delete;

  [[nodiscard]] bool at_end() const { return at_end_; }
  /// Throws `filesystem_error` where it fails otherwise than by the end.
  void next();

  [[nodiscard]] const std::wstring& name() const { return row_.name; }
  [[nodiscard]] std::wstring path() const { return joined(folder_, row_.name); }
  /// Whether the entry leads to a file, links followed. False also where that cannot be told.
  [[nodiscard]] bool is_file() const;

 private:
  /// The search, closed at the end of the walk.
  class Search {
   public:
    explicit Search(ports::Handle handle) : handle_(handle) {}
    ~Search();
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    [[nodiscard]] ports::Handle get() const { return handle_; }
    [[nodiscard]] bool valid() const { return handle_ != ports::Handle::invalid; }

   private:
    ports::Handle handle_;
  };
  void settle(bool got);

  const std::wstring folder_;
  ports::FolderRow row_;
  const Search search_;
  bool at_end_ = false;
};

}  // namespace base::fs
