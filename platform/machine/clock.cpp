#include "platform/machine/clock.h"

#include <chrono>

#include "platform/machine/scheduler/scheduler.h"

namespace machine {

namespace {

using std::chrono::milliseconds;
using UtcTime = std::chrono::sys_time<milliseconds>;

ports::LocalTime broken_down(UtcTime time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss<milliseconds> of_day(time - day);
  ports::LocalTime out;
  out.year = static_cast<std::uint16_t>(static_cast<int>(date.year()));
  out.month = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
  out.day = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
  out.hour = static_cast<std::uint16_t>(of_day.hours().count());
  out.minute = static_cast<std::uint16_t>(of_day.minutes().count());
  out.second = static_cast<std::uint16_t>(of_day.seconds().count());
  out.millisecond = static_cast<std::uint16_t>(of_day.subseconds().count());
  return out;
}

UtcTime utc(const ClockStart& start, Milliseconds now) {
  return UtcTime(milliseconds(start.milliseconds_since_1970) + milliseconds(now));
}

}  // namespace

std::uint32_t Clock::ticks() {
  return start_.ticks + static_cast<std::uint32_t>(scheduler_.now());
}

std::int64_t Clock::seconds_since_1970() {
  return std::chrono::floor<std::chrono::seconds>(utc(start_, scheduler_.now())).time_since_epoch().count();
}

ports::LocalTime Clock::local() {
  return broken_down(utc(start_, scheduler_.now()) + std::chrono::minutes(start_.offset_minutes));
}

ClockStart Clock::state() {
  const Milliseconds now = scheduler_.now();
  return {utc(start_, now).time_since_epoch().count(), start_.offset_minutes,
          start_.ticks + static_cast<std::uint32_t>(now)};
}

}  // namespace machine
