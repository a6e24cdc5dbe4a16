#pragma once

#include <string>
#include <vector>

#include "platform/machine/registry_tree.h"

namespace machine {

/// The parts of a path below HKEY_LOCAL_MACHINE as a 32-bit program means them: what lies below SOFTWARE stands in
/// Wow6432Node there, and so does what Classes keeps apart, like CLSID. Keys that both views share stay as they are.
[[nodiscard]] std::vector<std::wstring> parts_of_view_32(std::vector<std::wstring> parts);

/// A way through the registry: where it starts, and the parts from there.
struct RegistryWay {
  KeyId from = 0;
  std::vector<std::wstring> parts;
};
/// The same way in the 32-bit view.
[[nodiscard]] RegistryWay in_view_32(const RegistryTree& tree, RegistryWay way);

}  // namespace machine
