#pragma once

#include <cstdint>
#include <optional>

#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/time_stamp.h"

namespace diagnostics::reader {

/// Follows the records of a file and decides whose they are and where they stand in time. Records carry the time of day
/// alone; the date comes from a thread's first record. The order within a thread is kept whatever its times say:
///
/// - a fall of more than twelve hours is the next day;
/// - a smaller one is a clock that was set back: such records keep the place of the last one before, until their times
///   pass it;
/// - a smaller one right behind damage is another thread, whose first record was lost, where the file holds several.
class ThreadTracker {
 public:
  /// For a file that holds one thread's records, or, without a thread, several one after another.
  explicit ThreadTracker(std::optional<std::uint32_t> thread)
      : alone_(thread.has_value()), thread_(thread.value_or(0)) {}

  /// Takes the next record in; `start` is what it tells where it begins a thread. True where it is the first of another
  /// thread than the one before it.
  bool take(const Head& head, const std::optional<ThreadStart>& start);

  [[nodiscard]] std::uint32_t thread() const { return thread_; }
  [[nodiscard]] std::optional<std::int32_t> day() const;
  /// Milliseconds since 1970-01-01, local; since midnight of the thread's first day where its date is not known. Never
  /// less than that of the record before.
  [[nodiscard]] std::int64_t place() const { return place_; }

  /// What to take for the day of the current record, where no record has told the date.
  void assume_day(std::int32_t day);
  void move_to_next_day();

 private:
  const bool alone_;
  std::uint32_t thread_;
  bool begun_ = false;
  bool day_known_ = false;
  std::int32_t day_ = 0;
  std::uint32_t time_ = 0;
  std::int64_t place_ = 0;
};

}  // namespace diagnostics::reader
