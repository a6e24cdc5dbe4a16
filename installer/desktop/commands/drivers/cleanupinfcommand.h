#pragma once

#include <cstdint>
#include <string>

#include "ky/install_command.h"

namespace ky {

/// Removes a driver package from the driver store: finds the names that the system gave it in the INF folder, and runs
/// pnputil with each, one after another, for up to three minutes each. pnputil's exit code is not read.
///
/// The INF folder that cannot be read raises `base::fs::filesystem_error`, a `std::system_error` in the Windows
/// category, which leaves `Execute`. The end of the standard shape, `executed`, the last line and the guard, is owed
/// then too.
///
/// Attributes: driverName (the package's own INF file name, in any case; not expanded)
/// Keys read: String_SystemPath (with its closing backslash), String_WindowsPath
/// Keys written: none
/// Results: 0, whatever was removed; 1359 when another thread is inside. A load without driverName gives the base's
///   result and removes nothing.
class CCleanupINFCommand final : public Destroyable<CCleanupINFCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void RemovePackages(const std::wstring& folder, const wchar_t* system_folder) const;

  std::wstring driverName;  // in lower case from the first run on
};

}  // namespace ky
