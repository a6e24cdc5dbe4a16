#pragma once

#include <system_error>

#include "platform/ports/types.h"

namespace winapi {

namespace details {
/// The category of Windows error codes: `std::system_error` of this system carries it in both builds. Its messages are
/// the bound system's, so that one has to be bound when such an error is made or printed.
[[nodiscard]] const std::error_category& win_error_category() noexcept;
}  // namespace details

/// A Windows code, or an HRESULT as it is, as an error in the Windows category.
[[nodiscard]] std::error_code error_of(ports::ErrorCode code) noexcept;
/// The calling thread's last error in the same form; without error where that is 0.
[[nodiscard]] std::error_code last_error();

/// Raises `code` with `what` as a `std::system_error` in the Windows category.
[[noreturn]] void raise(ports::ErrorCode code, const char* what);

/// The same with the calling thread's last error.
[[noreturn]] void raise_last_error(const char* what);

}  // namespace winapi
