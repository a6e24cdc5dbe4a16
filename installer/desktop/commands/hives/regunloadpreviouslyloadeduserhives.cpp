#include "installer/desktop/commands/hives/regunloadpreviouslyloadeduserhives.h"

#include <string>
#include <utility>
#include <vector>

#include "installer/desktop/commands/base/trace.h"
#include "installer/desktop/commands/hives/hive_shape.h"
#include "installer/desktop/commands/hives/user_hives.h"
#include "platform/ports/codes.h"
#include "platform/ports/registry.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"RegUnloadPreviouslyLoadedUserHivesCommand";

/// Gives what ended the walk.
[[nodiscard]] ports::ErrorCode GatherMounted(std::uint32_t room, std::vector<std::wstring>& mounted) {
  ports::Registry& registry = ports::system().registry;
  for (std::uint32_t position = 0;; ++position) {
    std::wstring name;
    if (const auto end = registry.subkey_within(ports::RegistryKey::users, position, room, name)) return end;
    if (IsMountName(name)) mounted.push_back(std::move(name));
  }
}

}  // namespace

std::uint32_t CRegUnloadPreviouslyLoadedUserHives::Execute(std::uintptr_t, std::uintptr_t) {
  return InHiveShape(
      *this, guard, log_name, [] {}, [this] { Unmount(); });
}

/// All names come first: unmounting while the keys are walked would move those behind.
void CRegUnloadPreviouslyLoadedUserHives::Unmount() const {
  ports::Registry& registry = ports::system().registry;
  ports::KeyInformation information;
  if (registry.information(ports::RegistryKey::users, information) != ports::code::success) {
    Trace(L"%i: %s Error: Could not get the maximum subkey length.\n", index, log_name);
    return;
  }
  std::vector<std::wstring> mounted;
  if (GatherMounted(information.longest_subkey + 1, mounted) != ports::code::no_more_items) {
    Trace(L"%i: %s Error: Could not completely enumerate all the children of HKEY_USERS.\n", index, log_name);
  }
  for (const std::wstring& name : mounted) {
    const ports::ErrorCode error = registry.unload_hive(ports::RegistryKey::users, name.c_str());
    Trace(error == ports::code::success ? L"%i: %s: Unloaded user hive '%s'.\n"
                                        : L"%i: %s Error: Could not unload user hive '%s'.\n",
          index, log_name, name.c_str());
  }
}

}  // namespace ky
