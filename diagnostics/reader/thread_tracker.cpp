#include "diagnostics/reader/thread_tracker.h"

#include <algorithm>

namespace diagnostics::reader {

namespace {

constexpr std::uint32_t half_a_day = day_length / 2;

}  // namespace

bool ThreadTracker::take(const Head& head, const std::optional<ThreadStart>& start) {
  const bool fall = begun_ && head.time < time_;
  const bool next_day = begun_ && head.time + half_a_day < time_;
  const bool named = start.has_value() && !alone_ && (start->thread != thread_ || !begun_);
  const bool lost_name = !start.has_value() && !alone_ && head.after_damage && fall && !next_day;
  const bool first = !begun_ || named || lost_name;
  if (named || lost_name) {
    thread_ = named ? start->thread : 0;
    day_known_ = false;
    day_ = 0;
  } else if (next_day) {
    ++day_;
  }
  begun_ = true;
  if (start.has_value() && start->day.has_value() && !(day_known_ && *start->day < day_)) {
    day_ = *start->day;
    day_known_ = true;
  }
  time_ = head.time;
  const std::int64_t place = std::int64_t{day_} * day_length + time_;
  place_ = first ? place : std::max(place_, place);
  return first;
}

std::optional<std::int32_t> ThreadTracker::day() const {
  return day_known_ ? std::optional(day_) : std::nullopt;
}

void ThreadTracker::assume_day(std::int32_t day) {
  if (day_known_) return;
  day_ = day;
  day_known_ = true;
  place_ = std::int64_t{day_} * day_length + time_;
}

void ThreadTracker::move_to_next_day() {
  ++day_;
  place_ += day_length;
}

}  // namespace diagnostics::reader
