#pragma once

#include <cstdint>

#include "ky/install_command.h"

namespace ky {

/// Unmounts every hive below HKEY_USERS whose name holds the marker: those that `CRegLoadAllUserHivesCommand` mounted
/// in this run, and those that an earlier run left.
///
/// Attributes: none of its own
/// Keys read: none
/// Keys written: none
/// Results: 0, whatever could not be unmounted; 1359 when another thread is inside
class CRegUnloadPreviouslyLoadedUserHives final
    : public Destroyable<CRegUnloadPreviouslyLoadedUserHives, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;

 private:
  void Unmount() const;
};

}  // namespace ky
