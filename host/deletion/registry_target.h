#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/registry.h"

namespace host {

/// What a base and a subkey come to.
struct RegistryTarget {
  /// Null where the target may be touched; otherwise why it may not.
  const wchar_t* refusal = nullptr;
  ports::RegistryKey root = ports::RegistryKey::null;
  /// The subkey stands below each user's key: `parts` begins under HKEY_USERS\user.
  bool each_user = false;
  std::vector<std::wstring> parts;
};

/// Takes an expanded target apart. `base` is one of HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE and
/// HKEY_USERS, in capitals. Below HKEY_USERS a subkey "*\..." means each user. A closing backslash of the subkey is
/// left off; any other empty part refuses the target, so that an empty variable never widens it, as does an empty
/// subkey.
[[nodiscard]] RegistryTarget decide_registry_value(std::wstring_view base, std::wstring_view subkey);

/// The same for a key that is to go as a whole, which is refused as well where much of the system hangs on it: a hive,
/// or one of the great branches that products lie below.
[[nodiscard]] RegistryTarget decide_registry_key(std::wstring_view base, std::wstring_view subkey);

/// The target's name for people; for each user's it stands below HKEY_USERS\user.
[[nodiscard]] std::wstring full_name(std::wstring_view base, const RegistryTarget& target);

/// True for a user's own key below HKEY_USERS; a name that ends in "_Classes" is a part of one.
[[nodiscard]] bool is_user_key(std::wstring_view name);

/// The options to open part number `position` with: as itself, but for the one link of the system's own that a path may
/// pass, HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet.
[[nodiscard]] std::uint32_t open_options(ports::RegistryKey root, std::span<const std::wstring> parts,
                                         std::size_t position);

}  // namespace host
