#pragma once

#include <optional>
#include <string>

#include "platform/machine/privileges.h"
#include "platform/machine/running.h"

namespace machine {

/// Where the machine's process runs, and as whom. Paths have no closing backslash.
struct EnvironmentFacts {
  std::wstring system = L"C:\\Windows\\System32";
  std::wstring windows = L"C:\\Windows";
  std::wstring program_files = L"C:\\Program Files";
  std::wstring common_app_data = L"C:\\ProgramData";
  std::wstring temp = L"C:\\Windows\\Temp";
  std::wstring program = L"C:\\Setup\\setup.exe";  // this process's image
  std::wstring current_folder = L"C:\\Windows\\System32";
  std::wstring command_line = L"\"C:\\Setup\\setup.exe\"";
  std::wstring user = L".DEFAULT";  // the key of HKEY_USERS that HKEY_CURRENT_USER is
  bool elevated = true;
  bool desktop = true;                   // a shell runs
  bool may_link = true;                  // symbolic links may be made
  bool wow64 = false;                    // the process is a 32-bit one
  std::optional<RunningProgram> parent;  // the process that started this one, where it still runs
  std::optional<Privileges> privileges;  // of the process's token; none for those of its kind of user
  friend bool operator==(const EnvironmentFacts&, const EnvironmentFacts&) = default;
};

}  // namespace machine
