#pragma once

#include "platform/machine/file_tree.h"
#include "platform/machine/path.h"
#include "platform/ports/types.h"

namespace machine {

/// Whether a link at the path's end is meant itself.
enum class LastLink { itself, followed };

/// What a path leads to.
struct Found {
  /// Success; file_not_found (the last part is missing); path_not_found (one before it is); access_denied (it is
  /// going); invalid_name (a file, but the path ended in a backslash); cannot_resolve_filename (links without end).
  ports::ErrorCode error = 0;
  NodeId node = 0;
  /// Where the last part stands or would stand; no folder for a drive's root and where a folder is missing.
  FilePlace place;
};

[[nodiscard]] Found look_up(const FileTree& tree, const Path& path, LastLink last);

/// Makes the folders that are missing on the way to `path`, and itself. 0 where a file is in the way or the drive is
/// missing.
NodeId make_folders(FileTree& tree, const Path& path);

}  // namespace machine
