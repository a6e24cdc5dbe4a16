#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace ports {

/// Folders that the system knows by purpose.
enum class KnownFolder {
  system,             // GetSystemDirectoryW
  windows,            // GetWindowsDirectoryW
  program_files,      // SHGetSpecialFolderPathW 38
  common_app_data,    // SHGetSpecialFolderPathW 35
  all_users_profile,  // GetAllUsersProfileDirectoryW
};

/// Facts about this process and where it runs. Any thread.
class Environment {
 public:
  virtual ~Environment() = default;

  /// The folder's path without closing backslash, empty on failure.
  [[nodiscard]] virtual std::wstring folder(KnownFolder which) = 0;

  /// GetCommandLineW: the process's command line, program included. Cannot fail.
  [[nodiscard]] virtual std::wstring command_line() = 0;

  /// QueryDosDeviceW: the device paths that a name such as "C:" stands for, the current one first, each terminated and
  /// one terminator more behind them. Gives how many characters were written, all terminators counted; 0 is failure,
  /// with file_not_found (no such name) or insufficient_buffer in the last error.
  [[nodiscard]] virtual std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) = 0;
};

}  // namespace ports
