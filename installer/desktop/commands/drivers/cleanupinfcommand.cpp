#include "installer/desktop/commands/drivers/cleanupinfcommand.h"

#include <optional>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/desktop/commands/drivers/inf_packages.h"
#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/utils/base/fs/folder_walk.h"
#include "installer/utils/base/process/launch.h"
#include "installer/utils/base/strings/case_fold.h"
#include "platform/ports/codes.h"
#include "platform/ports/driver_store.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"CleanupINF";
constexpr std::uint32_t longest_run = 180000;  // milliseconds

/// The INF file's own name, in lower case; nothing where the system does not know it.
[[nodiscard]] std::optional<std::wstring> StoreNameOf(const std::wstring& inf) {
  wchar_t location[260] = {};
  std::uint32_t required = 0;
  if (!ports::system().drivers.inf_location(inf.c_str(), location, required)) return std::nullopt;
  return base::strings::lower_cased(FileNameOf(location));
}

/// Runs the line, if it fits, and tells whether it was started. One that is still running when the time is up goes on.
void RunAndTell(const std::wstring& line) {
  Trace(L"execute: '%s'\n", line.c_str());
  const auto launched = base::process::RunCommandLine(FitsPnputil(line) ? line : std::wstring(), L"");
  const winapi::scoped_handle process(launched.process);
  const winapi::scoped_handle thread(launched.thread);
  const ports::Handle handle = process.get();
  if (process.valid()) (void)ports::system().waits.wait({&handle, 1}, false, longest_run);
  Trace(L"execute status = %d\n", process.valid());
}

}  // namespace

std::uint32_t CCleanupINFCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  const std::uint32_t base_result = attributes.LoadBase(*this);
  const bool present = attributes.ReadCipheredAttribute(decrypter, L"driverName", driverName) == ports::code::success;
  return present ? ports::code::success : base_result;
}

std::uint32_t CCleanupINFCommand::Execute(std::uintptr_t, std::uintptr_t) {
  // This one line calls the command so.
  if (!EnterGuard(*this, guard, L"CleanupINFCommand")) return ports::code::internal_error;
  const StandardEnd end(*this, guard, log_name);
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  const CString* const system_folder = Get(keys::String_SystemPath);
  const CString* const windows_folder = Get(keys::String_WindowsPath);
  if (system_folder == nullptr || windows_folder == nullptr) {
    Trace(L"SystemPath or WinPath is empty!");
    return ports::code::success;
  }
  const std::wstring folder = base::fs::joined(windows_folder->value, L"INF");
  if (!base::fs::is_folder(folder)) {
    Trace(L"Directory: '%s' doesn't exist!\n", folder.c_str());
    return ports::code::success;
  }
  driverName = base::strings::lower_cased(driverName);
  RemovePackages(folder, system_folder->value);
  return ports::code::success;
}

/// Several names can stand for the same package, so that the walk always goes on to the end.
void CCleanupINFCommand::RemovePackages(const std::wstring& folder, const wchar_t* system_folder) const {
  for (base::fs::FolderWalk walk(folder); !walk.at_end(); walk.next()) {
    if (!walk.is_file()) continue;
    const std::wstring candidate = base::strings::lower_cased(walk.name());
    if (!MayBeAssignedInf(candidate)) continue;
    const std::optional<std::wstring> store_name = StoreNameOf(walk.path());
    if (store_name != driverName) continue;
    Trace(L"INF: '%s' is '%s'\n", store_name->c_str(), candidate.c_str());
    RunAndTell(PnputilLine(system_folder, candidate));
  }
}

}  // namespace ky
