#pragma once

#include <cstdint>
#include <vector>

#include "platform/machine/registry_tree.h"

namespace machine {

/// A hive file's content is a registry subtree as text: a line that tells what it is, and the keys as a machine file
/// has them, with paths below the hive's root. The real format has no part in what a script can do to it.

/// The content that holds what lies below `root`, without what is volatile. Equal subtrees give equal bytes.
[[nodiscard]] std::vector<std::uint8_t> hive_bytes(const RegistryTree& tree, KeyId root);

/// Puts the keys and values of a content below `root`, which is empty. False for bytes that are no hive; what came
/// until then stands.
[[nodiscard]] bool read_hive(const std::vector<std::uint8_t>& bytes, RegistryTree& tree, KeyId root);

/// Takes a key away with all that is below it, whatever it is.
void remove_keys(RegistryTree& tree, KeyId key);

}  // namespace machine
