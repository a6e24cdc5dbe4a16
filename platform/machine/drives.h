#pragma once

#include <string>
#include <string_view>

#include "platform/machine/file_tree.h"
#include "platform/machine/path.h"

namespace machine {

/// What a drive's name stands for: the device of its volume, or for a substitute its folder as "\??\C:\folder". Empty
/// for what is no drive.
[[nodiscard]] std::wstring device_of(const FileTree& tree, std::wstring_view drive);

/// The path that is meant: one on a substitute goes on in the folder that it stands for.
[[nodiscard]] Path without_substitute(const FileTree& tree, const Path& path);

/// A file's full path on its device, by its first name: "\Device\HarddiskVolume1\folder\file.exe".
[[nodiscard]] std::wstring device_path_of(const FileTree& tree, NodeId node);

}  // namespace machine
