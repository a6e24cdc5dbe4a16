#pragma once

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
};

}  // namespace ports
