#pragma once

#include <system_error>

#include "platform/ports/types.h"

namespace winapi {

namespace details {
/// The category of Windows error codes: `std::system_error` of this system carries it in both builds.
[[nodiscard]] const std::error_category& win_error_category() noexcept;
}  // namespace details

/// Raises `code` with `what` as a `std::system_error` in the Windows category.
[[noreturn]] void raise(ports::ErrorCode code, const char* what);

/// The same with the calling thread's last error.
[[noreturn]] void raise_last_error(const char* what);

}  // namespace winapi
