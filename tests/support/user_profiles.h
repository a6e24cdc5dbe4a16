#pragma once

#include <string>
#include <string_view>

#include "platform/machine/hive_content.h"
#include "platform/machine/registry_tree.h"
#include "tests/support/named_world.h"

namespace support {

inline constexpr std::wstring_view profile_list =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\";

/// The content of a hive with one key in it.
[[nodiscard]] inline std::string hive_content(std::wstring_view key = L"Software\\Tavrine") {
  machine::RegistryTree tree;
  const machine::KeyId root = machine::add_key(tree, tree.users, L"root");
  machine::make_keys_below(tree, root, machine::split_path(key));
  const auto bytes = machine::hive_bytes(tree, root);
  return {bytes.begin(), bytes.end()};
}

/// A row of the profile list.
inline void list_profile(NamedWorld& world, std::wstring_view sid, std::wstring_view folder) {
  world.value(std::wstring(profile_list).append(sid), L"ProfileImagePath", folder);
}

/// A user who is not logged on: a row of the profile list, and a folder of this name with a hive.
inline void add_profile(NamedWorld& world, std::wstring_view sid, std::wstring_view name) {
  const std::wstring folder = std::wstring(L"C:\\Users\\").append(name);
  list_profile(world, sid, folder);
  world.file(folder + L"\\NTUSER.DAT", hive_content());
}

/// The sid of user number `n`.
[[nodiscard]] inline std::wstring sid_of(std::size_t n) {
  return L"S-1-5-21-1-2-3-" + std::to_wstring(n);
}

/// Users 1001 and on, as many as told, none of them logged on.
inline void add_profiles(NamedWorld& world, std::size_t count) {
  for (std::size_t n = 1001; n <= 1000 + count; ++n) add_profile(world, sid_of(n), L"user" + std::to_wstring(n));
}

}  // namespace support
