#include "tools/ky/log/output_sinks.h"

#include <ostream>

#include "diagnostics/reader/time_stamp.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/log/record_text.h"

namespace log_tool {

namespace {

using diagnostics::reader::Problem;
using diagnostics::reader::ProblemKind;
using diagnostics::reader::Record;

constexpr std::size_t piece = 65536;

void append_field(std::string& to, const char* before, std::string_view utf8) {
  to += before;
  append_json(to, base::strings::to_wide(utf8));
}

}  // namespace

const char* name_of(ProblemKind kind) {
  switch (kind) {
    case ProblemKind::note:
      return "note";
    case ProblemKind::record:
      return "record";
    case ProblemKind::passed_over:
      return "passed-over";
    case ProblemKind::length:
      return "length";
    case ProblemKind::cut_short:
      return "cut-short";
    case ProblemKind::key_header:
      return "key-header";
    case ProblemKind::no_key:
      return "no-key";
    case ProblemKind::wrong_key:
      return "wrong-key";
    case ProblemKind::file:
      break;
  }
  return "file";
}

void OutputSink::problem(const Problem& problem) {
  if (problem.kind != ProblemKind::note) ++problems_;
  (void)flush();
  err_ << problem.line() << '\n';
}

bool OutputSink::flush() {
  out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
  out_.flush();
  text_.clear();
  return out_.good();
}

void OutputSink::written() {
  if (text_.size() >= piece) (void)flush();
}

void TextSink::begin_run(const std::string& name) {
  if (name_runs_) text() += "== " + name + '\n';
}

void TextSink::record(const Record& record) {
  std::string& to = text();
  const std::size_t begin = to.size();
  to.push_back('[');
  append_time(to, record.time, ':');
  to += "] ";
  to += record.thread == 0 ? "?" : std::to_string(record.thread);
  to.push_back(' ');
  append_shown(to, without_line_end(record.message), to.size() - begin);
  to.push_back('\n');
  written();
}

void JsonSink::record(const Record& record) {
  std::string& to = text();
  append_field(to, "{\"run\":", run_);
  append_field(to, ",\"file\":", record.file);
  to += ",\"offset\":" + std::to_string(record.offset);
  if (record.thread != 0) to += ",\"thread\":" + std::to_string(record.thread);
  if (record.day) {
    const diagnostics::reader::Date date = diagnostics::reader::date_of(*record.day);
    to += base::strings::format(",\"date\":\"%04d-%02u-%02u\"", date.year, date.month, date.day);
  }
  to += ",\"time\":\"";
  append_time(to, record.time, '.');
  to += "\",\"message\":";
  append_json(to, without_line_end(record.message));
  to += "}\n";
  written();
}

void JsonSink::problem(const Problem& problem) {
  std::string& to = text();
  append_field(to, "{\"problem\":", name_of(problem.kind));
  append_field(to, ",\"file\":", problem.file);
  to += ",\"offset\":" + std::to_string(problem.offset) + ",\"bytes\":" + std::to_string(problem.bytes);
  append_field(to, ",\"text\":", problem.text);
  to += "}\n";
  OutputSink::problem(problem);
}

}  // namespace log_tool
