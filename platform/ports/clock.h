#pragma once

#include <cstdint>

namespace ports {

/// Broken-down local time.
struct LocalTime {
  std::uint16_t year = 0;
  std::uint16_t month = 0;
  std::uint16_t day = 0;
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t millisecond = 0;
};

/// The clock. Cannot fail; any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// GetTickCount: milliseconds since the system started, wrapping at 32 bits.
  [[nodiscard]] virtual std::uint32_t ticks() = 0;

  /// _time64: seconds since 1970, UTC.
  [[nodiscard]] virtual std::int64_t seconds_since_1970() = 0;

  /// GetLocalTime.
  [[nodiscard]] virtual LocalTime local() = 0;
};

}  // namespace ports
