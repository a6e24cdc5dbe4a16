#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

namespace base::process {

// Errors go out in the Windows category (win_error_category); the caller clears the parameter before the call.

/// The full path of the file that a process runs (K32GetModuleFileNameExW); empty on failure, with the code in `error`.
/// Process 0 gives an empty path without error. A 32-bit caller is answered by `GetProcessImagePathFromDevice`.
[[nodiscard]] std::wstring GetProcessImagePath(std::uint32_t pid, std::error_code& error);

/// The same by way of the device path, which needs fewer rights (K32GetProcessImageFileNameW); empty on any failure,
/// which is not told.
[[nodiscard]] std::wstring GetProcessImagePathFromDevice(std::uint32_t pid);

/// "\Device\HarddiskVolume2\x" as "C:\x". Nothing for null, for a path that does not begin with "\Device\" in any case,
/// and for a device without a letter. The table of letters is made at the first call and never again while the system
/// is bound: a drive that is mapped later is not seen.
[[nodiscard]] std::optional<std::wstring> DevicePathToDosPath(const wchar_t* path);

/// This process's own path, read once for the bound system; empty where it cannot be read.
[[nodiscard]] const std::wstring& GetOwnImagePath();

}  // namespace base::process
