#pragma once

#include <cstdint>
#include <optional>

#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/process/scoped_privilege.h"
#include "ky/install_command.h"
#include "platform/ports/codes.h"

namespace ky {

/// The shape of the commands that mount and unmount hives: the standard one, and in it `prepare()` without privileges
/// and `work()` with both that hives need. Without them `work` is left out, which only the log tells. The restore
/// privilege outlasts the guard, the backup privilege ends with the work.
template <class Prepare, class Work>
[[nodiscard]] std::uint32_t InHiveShape(CInstallCommand& command, CommandGuard& guard, const wchar_t* name,
                                        Prepare&& prepare, Work&& work) {
  if (!EnterGuard(command, guard, name)) return ports::code::internal_error;
  std::optional<base::process::ScopedPrivilege> restore;
  const GuardLeaver leaver(guard);
  Trace(L"%i: %s Begin execute.\n", command.index, name);
  prepare();
  if (!restore.emplace(L"SeRestorePrivilege").succeeded()) {
    Trace(L"%i: %s Error: Could not set the RESTORE_NAME privilege.\n", command.index, name);
  } else if (const base::process::ScopedPrivilege backup(L"SeBackupPrivilege"); !backup.succeeded()) {
    Trace(L"%i: %s Error: Could not set the BACKUP_NAME privilege.\n", command.index, name);
  } else {
    work();
  }
  EndExecute(command, name);
  return ports::code::success;
}

}  // namespace ky
