#include "platform/machine/drives.h"

#include <iterator>

namespace machine {

std::wstring device_of(const FileTree& tree, std::wstring_view drive) {
  const auto substitute = tree.substitutes.find(drive);
  if (substitute != tree.substitutes.end()) return L"\\??\\" + substitute->second;
  const auto volume = tree.volumes.find(drive);
  if (volume == tree.volumes.end()) return {};
  if (!volume->second.device.empty()) return volume->second.device;
  return L"\\Device\\HarddiskVolume" + std::to_wstring(std::distance(tree.volumes.begin(), volume) + 1);
}

Path without_substitute(const FileTree& tree, const Path& path) {
  const auto substitute = tree.substitutes.find(path.drive);
  if (substitute == tree.substitutes.end()) return path;
  Path meant = parse_path(L"\\\\?\\" + substitute->second, {}).path;
  meant.parts.insert(meant.parts.end(), path.parts.begin(), path.parts.end());
  meant.folder_wanted = path.folder_wanted;
  return meant;
}

std::wstring device_path_of(const FileTree& tree, NodeId node) {
  const std::wstring path = path_of(tree, node);
  return device_of(tree, path.substr(0, 2)) + path.substr(2);
}

}  // namespace machine
