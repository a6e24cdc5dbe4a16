#include "installer/utils/base/fs/same_file.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace base::fs {

namespace {

/// For volumes without identities: the serial number, and the file's number with zeros behind it.
[[nodiscard]] ports::FileIdentity identity_of(const ports::FileInformation& information) {
  ports::FileIdentity identity;
  identity.volume = information.volume;
  for (std::size_t i = 0; i < sizeof information.index; ++i) {
    identity.id[i] = static_cast<std::uint8_t>(information.index >> (8 * i));
  }
  return identity;
}

[[nodiscard]] std::optional<ports::FileIdentity> identity_of(const wchar_t* path) {
  const ports::System& system = ports::system();
  const winapi::scoped_handle file(system.files.open(path, ports::file_access::read_attributes, ports::file_share::all,
                                                     ports::Disposition::open_existing,
                                                     ports::open_flag::backup_semantics));
  if (!file.valid()) return std::nullopt;
  ports::FileIdentity identity;
  if (system.files.identity(file.get(), identity)) return identity;
  const ports::ErrorCode code = system.errors.last();
  if (code != ports::code::not_supported && code != ports::code::invalid_parameter) return std::nullopt;
  ports::FileInformation information;
  if (!system.files.information(file.get(), information)) return std::nullopt;
  return identity_of(information);
}

}  // namespace

bool SameFile(const wchar_t* candidate, const wchar_t* path) {
  if (candidate == nullptr || path == nullptr) return false;
  if (std::wstring_view(candidate).size() != std::wstring_view(path).size()) return false;
  const std::optional<ports::FileIdentity> first = identity_of(candidate);
  return first && first == identity_of(path);
}

}  // namespace base::fs
