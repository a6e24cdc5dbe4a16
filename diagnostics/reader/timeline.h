#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/record.h"
#include "diagnostics/reader/thread_tracker.h"

namespace diagnostics::reader {

/// The records of one part of a file on their way to a sink.
class ThreadLog {
 public:
  /// `file` outlives the object. For `thread` see `ThreadTracker`.
  ThreadLog(const std::string& file, std::unique_ptr<Cursor> cursor, std::optional<std::uint32_t> thread)
      : file_(file), cursor_(std::move(cursor)), tracker_(thread) {}

  /// Goes to the next record. False at the end.
  [[nodiscard]] bool advance();
  /// True where the current record is the first of another thread than the one before it.
  [[nodiscard]] bool another_thread() const { return another_thread_; }
  [[nodiscard]] std::uint64_t offset() const { return head_.offset; }
  /// Gives the current record to the sink.
  void emit(RecordSink& sink);
  /// How many records were given.
  [[nodiscard]] std::uint64_t records() const { return records_; }

  [[nodiscard]] ThreadTracker& tracker() { return tracker_; }
  [[nodiscard]] Cursor& cursor() { return *cursor_; }

 private:
  const std::string& file_;
  const std::unique_ptr<Cursor> cursor_;
  ThreadTracker tracker_;
  Head head_;
  std::uint64_t records_ = 0;
  bool another_thread_ = false;
  std::wstring message_;
  bool message_read_ = false;
};

using ThreadLogs = std::vector<ThreadLog*>;

/// Gives all their records as one timeline. Records of one moment come in the order of `logs`, those of one log always
/// in its own. May be called again where logs have grown.
void read_timeline(const ThreadLogs& logs, RecordSink& sink);

/// Gives all their records, one log after the other.
void read_in_order(const ThreadLogs& logs, RecordSink& sink);

/// One thread's records inside a merged file.
struct Segment {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::uint32_t thread = 0;  // 0: not known, its first record is lost
};

/// Reads the part `extent` of a file to its end and tells the threads in it. What follows the 1,000th belongs to its
/// segment.
[[nodiscard]] std::vector<Segment> find_segments(ThreadLog& log, const Extent& extent);

}  // namespace diagnostics::reader
