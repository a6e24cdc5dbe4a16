#pragma once

#include <cstdint>
#include <map>
#include <string_view>

#include "platform/machine/file_tree.h"
#include "platform/machine/registry_tree.h"

namespace machine {

struct State;

/// The hive files that are mounted, by the key that each is mounted as. The registry holds a file of these open so that
/// nobody else can.
using MountedHives = std::map<KeyId, NodeId>;

/// The owner of the registry's holds on files.
inline constexpr std::uint64_t hive_owner = UINT64_MAX;

/// Mounts a hive file under a new name below one of the two roots. Needs no privilege here.
/// Errors: as of the port's `load_hive`.
[[nodiscard]] ports::ErrorCode mount_hive(State& state, KeyId root, std::wstring_view name, std::wstring_view file);

/// Books the file as mounted at a key that has its content already.
void hold_hive(State& state, KeyId key, NodeId file);

/// Puts what is below the key into its file, and takes the key away. A volatile key is lost.
/// Errors: invalid_parameter (no mounted hive), disk_full (nothing is changed then).
[[nodiscard]] ports::ErrorCode unmount_hive(State& state, KeyId key);

}  // namespace machine
