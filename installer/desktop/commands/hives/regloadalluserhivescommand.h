#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ky/install_command.h"
#include "platform/ports/registry.h"

namespace ky {

/// Mounts the hive of every person's profile under HKEY_USERS, where the person is not logged on, so that later
/// commands reach the keys of all users. `CRegUnloadPreviouslyLoadedUserHives` unmounts them; nothing else does. A
/// second run of the same object collects each profile once more.
///
/// Attributes: none of its own
/// Keys read: none
/// Keys written: none
/// Results: 0, whatever could not be mounted; 1359 when another thread is inside
class CRegLoadAllUserHivesCommand final : public Destroyable<CRegLoadAllUserHivesCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;

 private:
  struct UserProfile {
    std::wstring sid;          // the name of its key in the profile list
    std::wstring profilePath;  // as long as the value has bytes: read it as far as its first NUL
  };

  void CollectProfiles();
  [[nodiscard]] ports::ErrorCode CollectFrom(ports::RegistryKey list);
  void CollectOne(const std::wstring& sid);
  void Mount(const UserProfile& profile) const;

  std::vector<UserProfile> profiles;
};

}  // namespace ky
