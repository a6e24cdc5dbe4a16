#pragma once

#include <cstdint>

namespace ports {

/// A Windows error code, 0 for success.
using ErrorCode = std::uint32_t;
/// A COM result: negative is failure, 0 success, 1 "nothing there".
using Result = std::int32_t;

/// Something of the system that is waited for or closed: a file, event, process or thread.
enum class Handle : std::uintptr_t { null = 0, invalid = ~std::uintptr_t{0} };
/// A loaded module.
enum class Module : std::uintptr_t { null = 0 };

/// Waits and sleeps: milliseconds without end.
inline constexpr std::uint32_t infinite = 0xFFFFFFFF;

[[nodiscard]] constexpr bool succeeded(Result result) {
  return result >= 0;
}

}  // namespace ports
