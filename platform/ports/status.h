#pragma once

#include <cstdint>

namespace ports {

/// An NTSTATUS: 0 or more is success.
using Status = std::int32_t;

[[nodiscard]] constexpr bool status_ok(Status status) {
  return status >= 0;
}

/// Statuses that the logic or an engine names.
namespace status {
inline constexpr Status success = 0;
inline constexpr Status unsuccessful = static_cast<Status>(0xC0000001);
inline constexpr Status not_implemented = static_cast<Status>(0xC0000002);
inline constexpr Status invalid_info_class = static_cast<Status>(0xC0000003);
inline constexpr Status invalid_handle = static_cast<Status>(0xC0000008);
inline constexpr Status invalid_parameter = static_cast<Status>(0xC000000D);
inline constexpr Status no_memory = static_cast<Status>(0xC0000017);
inline constexpr Status access_denied = static_cast<Status>(0xC0000022);
inline constexpr Status buffer_too_small = static_cast<Status>(0xC0000023);
inline constexpr Status data_error = static_cast<Status>(0xC000003E);
inline constexpr Status not_supported = static_cast<Status>(0xC00000BB);
inline constexpr Status entry_point_not_found = static_cast<Status>(0xC0000139);
inline constexpr Status invalid_buffer_size = static_cast<Status>(0xC0000206);
inline constexpr Status not_found = static_cast<Status>(0xC0000225);
}  // namespace status

}  // namespace ports
