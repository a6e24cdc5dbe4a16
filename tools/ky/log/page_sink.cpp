#include "tools/ky/log/page_sink.h"

#include <ostream>
#include <string_view>

#include "tools/ky/log/page_data.h"
#include "tools/ky/log/page_parts.h"

namespace log_tool {

namespace {

using diagnostics::reader::Problem;
using diagnostics::reader::ProblemKind;
using diagnostics::reader::Record;

/// The document's text with each "@NAME@" line replaced by that part.
std::string assemble(std::string_view data) {
  const struct {
    std::string_view mark;
    std::string_view part;
  } parts[] = {{"@STYLE@\n", page_parts::style()},   {"@DATA@", data},
               {"@MODEL@\n", page_parts::model()},   {"@TIMELINE@\n", page_parts::timeline()},
               {"@LIST@\n", page_parts::list()},     {"@ROWS@\n", page_parts::rows()},
               {"@PANELS@\n", page_parts::panels()}, {"@VIEWER@\n", page_parts::viewer()}};
  std::string_view rest = page_parts::document();
  std::string page;
  page.reserve(data.size() + 200'000);
  for (const auto& [mark, part] : parts) {
    const std::size_t at = rest.find(mark);
    page.append(rest.substr(0, at)).append(part);
    rest.remove_prefix(at + mark.size());
  }
  return page.append(rest);
}

}  // namespace

void PageSink::record(const Record& record) {
  if (runs_.empty()) begin_run({});
  bytes_ += runs_.back().add(record);
  ++records_;
  // Seldom and many at once: what is removed from the front moves all the rest.
  keep_within(8);
}

void PageSink::problem(const Problem& problem) {
  if (problem.kind != ProblemKind::note) ++problems_;
  err_ << problem.line() << '\n';
  if (runs_.empty()) begin_run({});
  runs_.back().add(problem);
}

/// Removes the oldest records where the limits are passed, by a `slack`-th at least where that is not 0.
void PageSink::keep_within(std::size_t slack) {
  const auto room = [&](std::size_t limit) { return limit + (slack == 0 ? 0 : limit / slack); };
  if (records_ <= room(limits_.records) && bytes_ <= room(limits_.bytes)) return;
  for (PageRun& run : runs_) {
    std::size_t records = 0;
    std::size_t bytes = 0;
    const auto too_much = [&] { return records_ - records > limits_.records || bytes_ - bytes > limits_.bytes; };
    for (; records < run.records().size() && too_much(); ++records) bytes += run.records()[records].message.size();
    run.leave_out(records);
    records_ -= records;
    bytes_ -= bytes;
  }
}

std::string PageSink::page() {
  keep_within(0);
  std::size_t left_out = 0;
  for (const PageRun& run : runs_) left_out += run.left_out();
  if (left_out != 0) {
    err_ << "the page holds the newest " << records_ << " records; " << left_out << " older ones were left out\n";
  }
  return assemble(page_data(runs_));
}

}  // namespace log_tool
