#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/types.h"

namespace machine {

/// A path as the file system gets it: a drive and clean parts.
struct Path {
  std::wstring drive;  // "C:"
  std::vector<std::wstring> parts;
  bool folder_wanted = false;  // it ended in a backslash
};

/// A path, or why there is none.
struct ParsedPath {
  ports::ErrorCode error = 0;
  Path path;
};

/// Longest plain path, terminator included. A path that starts with "\\?\" has no such limit.
inline constexpr std::size_t max_path = 260;
/// Folders are made by a name that leaves room for an 8.3 name below them.
inline constexpr std::size_t max_new_folder = 248;

/// Makes a path whole and clean: "/" is "\", "." and ".." are resolved, a part loses one trailing dot, the last part
/// all trailing dots and blanks. What starts with "\\?\" is taken as it stands. A path without drive starts at
/// `current_folder`, which is a full path. `wildcards` lets "*" and "?" stand in the last part.
/// Errors: path_not_found (empty, no drive), filename_too_long, bad_network_path (a share), invalid_name.
[[nodiscard]] ParsedPath parse_path(std::wstring_view text, std::wstring_view current_folder, bool wildcards = false);

/// The path as text, "C:\" and the parts.
[[nodiscard]] std::wstring to_text(const Path& path);

/// The part behind the last backslash.
[[nodiscard]] std::wstring_view last_part(std::wstring_view path);

}  // namespace machine
