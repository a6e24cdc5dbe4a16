#pragma once

#include <cstdint>

#include "platform/ports/clock.h"

namespace machine {

class Scheduler;

/// What the machine's clock shows when it starts.
struct ClockStart {
  std::int64_t milliseconds_since_1970 = 0;  // UTC
  std::int32_t offset_minutes = 0;           // local time less UTC, all year round
  std::uint32_t ticks = 0;
};

/// The machine's clocks: all are the start plus the scheduler's time.
class Clock final : public ports::Clock {
 public:
  Clock(Scheduler& scheduler, const ClockStart& start) : scheduler_(scheduler), start_(start) {}

  [[nodiscard]] std::uint32_t ticks() override;
  [[nodiscard]] std::int64_t seconds_since_1970() override;
  [[nodiscard]] ports::LocalTime local() override;

  /// What a machine that starts where this one stands has to show.
  [[nodiscard]] ClockStart state();

 private:
  Scheduler& scheduler_;
  const ClockStart start_;
};

}  // namespace machine
