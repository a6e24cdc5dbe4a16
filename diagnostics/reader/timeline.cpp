#include "diagnostics/reader/timeline.h"

#include <algorithm>
#include <utility>

namespace diagnostics::reader {

namespace {

// Each segment is read by a cursor of its own, and memory is bounded.
constexpr std::size_t max_segments = 1000;

/// A log's current record among those of the others.
struct Candidate {
  std::int64_t place = 0;
  std::size_t order = 0;
};

/// For a heap whose front is the next record.
bool later(const Candidate& a, const Candidate& b) {
  return a.place != b.place ? a.place > b.place : a.order > b.order;
}

/// Threads whose date is lost begin on the run's first day, or on the next where they would begin half a day before it.
void assume_days(const ThreadLogs& logs, const std::vector<Candidate>& candidates) {
  std::optional<std::int64_t> first;
  for (const Candidate& candidate : candidates) {
    const ThreadTracker& tracker = logs[candidate.order]->tracker();
    if (tracker.day()) first = std::min(first.value_or(tracker.place()), tracker.place());
  }
  if (!first) return;
  const auto day = static_cast<std::int32_t>(*first / day_length);
  for (const Candidate& candidate : candidates) {
    ThreadTracker& tracker = logs[candidate.order]->tracker();
    if (tracker.day()) continue;
    tracker.assume_day(day);
    if (tracker.place() + day_length / 2 < *first) tracker.move_to_next_day();
  }
}

}  // namespace

bool ThreadLog::advance() {
  message_read_ = false;
  if (!cursor_->next(head_)) return false;
  std::optional<ThreadStart> start;
  if (cursor_->begins_thread()) {
    cursor_->message(message_);
    message_read_ = true;
    start = thread_start(message_);
  }
  another_thread_ = tracker_.take(head_, start);
  return true;
}

void ThreadLog::emit(RecordSink& sink) {
  if (!message_read_) cursor_->message(message_);
  ++records_;
  sink.record({file_, head_.offset, tracker_.thread(), tracker_.day(), head_.time, message_});
}

void read_timeline(const ThreadLogs& logs, RecordSink& sink) {
  if (logs.size() == 1) {
    read_in_order(logs, sink);
    return;
  }
  std::vector<Candidate> heap;
  for (std::size_t i = 0; i < logs.size(); ++i) {
    if (logs[i]->advance()) heap.push_back({0, i});
  }
  assume_days(logs, heap);
  for (Candidate& candidate : heap) candidate.place = logs[candidate.order]->tracker().place();
  std::make_heap(heap.begin(), heap.end(), later);
  while (!heap.empty()) {
    std::pop_heap(heap.begin(), heap.end(), later);
    Candidate& next = heap.back();
    ThreadLog& log = *logs[next.order];
    log.emit(sink);
    if (log.advance()) {
      next.place = log.tracker().place();
      std::push_heap(heap.begin(), heap.end(), later);
    } else {
      heap.pop_back();
    }
  }
}

void read_in_order(const ThreadLogs& logs, RecordSink& sink) {
  for (ThreadLog* const log : logs) {
    while (log->advance()) log->emit(sink);
  }
}

std::vector<Segment> find_segments(ThreadLog& log, const Extent& extent) {
  std::vector<Segment> segments;
  while (segments.size() < max_segments && log.advance()) {
    if (!log.another_thread()) continue;
    const bool first = segments.empty();
    // What precedes the first record, damage, is told with it.
    if (!first) segments.back().end = log.offset();
    segments.push_back({first ? extent.begin : log.offset(), extent.end, log.tracker().thread()});
  }
  if (segments.empty()) segments.push_back({extent.begin, extent.end, 0});
  return segments;
}

}  // namespace diagnostics::reader
