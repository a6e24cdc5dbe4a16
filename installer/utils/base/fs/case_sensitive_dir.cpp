#include "installer/utils/base/fs/case_sensitive_dir.h"

#include <cstdint>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "installer/utils/base/stop.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace base::fs {

namespace {

/// Of what the path leads to, links followed.
[[nodiscard]] bool is_folder(const wchar_t* path) {
  ports::Files& files = ports::system().files;
  const winapi::scoped_handle found(files.open(path, ports::file_access::read_attributes, ports::file_share::all,
                                               ports::Disposition::open_existing, ports::open_flag::backup_semantics));
  ports::FileInformation information;
  return found.valid() && files.information(found.get(), information) &&
         (information.attributes & ports::file_attribute::directory) != 0;
}

/// Warnings pass too, unlike with `status_ok`.
[[nodiscard]] bool is_no_error(ports::Status status) {
  return static_cast<std::uint32_t>(status) >> 30 != 3;
}

}  // namespace

std::optional<bool> IsCaseSensitiveDir(const wchar_t* path, std::error_code& error) {
  if (path == nullptr) stop_assertion(L"path");
  if (!is_folder(path)) return std::nullopt;
  const ports::System& system = ports::system();
  const winapi::scoped_handle folder(system.files.open(path, ports::file_access::read_attributes,
                                                       ports::file_share::none, ports::Disposition::open_always,
                                                       ports::open_flag::backup_semantics));
  if (!folder.valid()) {
    error = winapi::last_error();
    return std::nullopt;
  }
  std::uint32_t flags = 0;
  const ports::Status status = system.files.case_sensitivity(folder.get(), flags);
  if (!is_no_error(status)) {
    error = winapi::error_of(system.errors.of_status(status));
    return std::nullopt;
  }
  return (flags & 1) != 0;
}

}  // namespace base::fs
