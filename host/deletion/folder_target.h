#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What a path to a folder that is to go comes to.
struct FolderTarget {
  /// Null where the folder may go; otherwise why it may not.
  const wchar_t* refusal = nullptr;
  /// The paths to open one after another, from the drive's root down to the folder itself. They are in the form that
  /// the system takes as it stands ("\\?\C:\a\b"), so that no part of them means anything but its own name.
  std::vector<std::wstring> steps;
};

/// Looks at an expanded path. Only a whole path on a drive passes ("C:\a\b", "/" is "\", one closing backslash is left
/// off), without empty parts, ".", "..", a stream, or a part that ends in a dot or blank. An empty variable between
/// backslashes thus refuses it. Neither a drive's root nor a folder of `protected_folders`, nor one that holds such a
/// folder, may go. ASCII case is ignored.
[[nodiscard]] FolderTarget decide_folder(std::wstring_view path, std::span<const std::wstring> protected_folders);

/// The path as people write it, without the form's prefix.
[[nodiscard]] const wchar_t* shown(const std::wstring& step);

}  // namespace host
