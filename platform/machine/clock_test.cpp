#include "platform/machine/clock.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "platform/machine/scheduler/scheduler.h"

namespace machine {
namespace {

std::string text(const ports::LocalTime& time) {
  char out[64];
  std::snprintf(out, sizeof out, "%04d-%02d-%02d %02d:%02d:%02d.%03d", time.year, time.month, time.day, time.hour,
                time.minute, time.second, time.millisecond);
  return out;
}

TEST(MachineClock, AllClocksAreTheStartPlusTheMachinesTime) {
  struct Case {
    ClockStart start;
    std::uint32_t later;
    const char* local;
    std::int64_t seconds;
    std::uint32_t ticks;
  };
  constexpr std::int64_t leap_eve = 1'709'164'799'000;  // 2024-02-28 23:59:59 UTC
  const Case cases[] = {
      {{leap_eve, 0, 5'000}, 0, "2024-02-28 23:59:59.000", 1'709'164'799, 5'000},
      {{leap_eve, 0, 5'000}, 1'234, "2024-02-29 00:00:00.234", 1'709'164'800, 6'234},
      {{leap_eve, -210, 0xFFFFFFFF}, 2, "2024-02-28 20:29:59.002", 1'709'164'799, 1},
      {{leap_eve, 345, 0}, 86'400'000 - 1, "2024-03-01 05:44:58.999", 1'709'251'198, 86'399'999},
      {{0, -1, 0}, 999, "1969-12-31 23:59:00.999", 0, 999},
  };
  for (const Case& each : cases) {
    Scheduler scheduler;
    const Scheduler::Entered entered(scheduler, 4);
    Clock clock(scheduler, each.start);
    if (each.later != 0) scheduler.sleep(each.later);
    EXPECT_EQ(text(clock.local()), each.local);
    EXPECT_EQ(clock.seconds_since_1970(), each.seconds);
    EXPECT_EQ(clock.ticks(), each.ticks);

    Scheduler next_run;
    Clock goes_on(next_run, clock.state());
    EXPECT_EQ(text(goes_on.local()), each.local);
    EXPECT_EQ(goes_on.ticks(), each.ticks);
  }
}

}  // namespace
}  // namespace machine
