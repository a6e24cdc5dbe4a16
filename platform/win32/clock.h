#pragma once

#include "platform/ports/clock.h"

namespace win32 {

class Clock final : public ports::Clock {
 public:
  std::uint32_t ticks() override;
  std::int64_t seconds_since_1970() override;
  ports::LocalTime local() override;
};

}  // namespace win32
