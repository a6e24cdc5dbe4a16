#pragma once

#include <string>
#include <string_view>

namespace ky {

/// What the names of mounted hives hold, so that a later run knows what this one, or one that was cut off, mounted.
inline constexpr std::wstring_view hive_marker = L"__ky_setup__";

/// The key below HKEY_USERS that a user's hive is mounted as.
[[nodiscard]] std::wstring MountName(std::wstring_view sid);

/// Whether a key below HKEY_USERS has the marker anywhere in its name.
[[nodiscard]] bool IsMountName(std::wstring_view name);

/// Whether a key of the profile list is a person's. The system's three accounts are none, and neither is what has
/// ".bak" in its name, in exactly this case: the backup of a profile that Windows could not read.
[[nodiscard]] bool IsPersonsProfile(std::wstring_view name);

}  // namespace ky
