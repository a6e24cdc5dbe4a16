#include "tools/ky/log/page_data.h"

#include <algorithm>
#include <string_view>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"
#include "tools/ky/log/output_sinks.h"
#include "tools/ky/log/record_text.h"

namespace log_tool {

namespace {

void append_text(std::string& to, std::string_view utf8) {
  append_script_json(to, base::strings::to_wide(utf8));
}

/// Appends `,"name":[...]`, an element each through `append`.
template <class Items, class Append>
void append_list(std::string& to, const char* name, const Items& items, Append append) {
  to.append(",\"").append(name).append("\":[");
  const std::size_t begin = to.size();
  for (const auto& item : items) {
    if (to.size() != begin) to.push_back(',');
    append(item);
  }
  to.push_back(']');
}

template <class Number>
void append_number(std::string& to, const std::optional<Number>& number) {
  to += number ? std::to_string(*number) : "null";
}

/// A run's name is its label, a dot, perhaps a tag, and the time of its start. Where it is a path it tells nothing.
void append_name(std::string& to, const std::string& run) {
  constexpr std::size_t most_digits = 10;
  const std::string name = desk::place_of(run).name;
  const std::size_t digits = std::min(most_digits, name.size() - (name.find_last_not_of("0123456789") + 1));
  std::string label = name.substr(0, name.size() - digits);
  if (label.ends_with('.')) label.pop_back();
  to += "{\"name\":";
  append_text(to, name);
  to += ",\"label\":";
  append_text(to, digits == 0 ? std::string() : label);
  to += ",\"start\":" + (digits == 0 ? "null" : std::to_string(std::stoull(name.substr(name.size() - digits))));
}

class RunData {
 public:
  RunData(std::string& to, const PageRun& run) : to_(to), run_(run) {}

  void append() {
    append_name(to_, run_.name());
    to_.append(",\"dated\":").append(run_.dated() ? "true" : "false");
    to_ += ",\"leftOut\":" + std::to_string(run_.left_out());
    append_list(to_, "threads", run_.threads(), [&](const PageThread& thread) {
      to_ += '[' + std::to_string(thread.id) + ',' + (thread.description.empty() ? "\"\"" : thread.description) + ']';
    });
    append_list(to_, "commands", run_.names(), [&](const std::string& name) { append_text(to_, name); });
    append_list(to_, "files", run_.files(), [&](const std::string& path) { append_file(path); });
    append_list(to_, "problems", run_.problems(), [&](const auto& problem) { append_problem(problem); });
    append_records();
    append_findings();
    append_list(to_, "spans", spans_of(run_.lines()), [&](const Span& span) { append_span(span); });
    to_.push_back('}');
  }

 private:
  void append_file(const std::string& path) { append_text(to_, desk::place_of(path).name); }

  void append_problem(const diagnostics::reader::Problem& problem) {
    to_.append("[\"").append(name_of(problem.kind)).append("\",");
    append_file(problem.file);
    to_ += ',' + std::to_string(problem.offset) + ',' + std::to_string(problem.bytes) + ',';
    append_text(to_, problem.text);
    to_.push_back(']');
  }

  void append_records() {
    const auto& records = run_.records();
    std::int64_t before = 0;
    append_list(to_, "time", records, [&](const PageRecord& record) {
      to_ += std::to_string(record.time - before);
      before = record.time;
    });
    append_list(to_, "thread", run_.lines(), [&](const LogLine& line) { to_ += std::to_string(line.thread); });
    append_list(to_, "file", records, [&](const PageRecord& record) { to_ += std::to_string(record.file); });
    append_list(to_, "offset", records, [&](const PageRecord& record) { to_ += std::to_string(record.offset); });
    append_list(to_, "message", records, [&](const PageRecord& record) { to_ += record.message; });
  }

  void append_findings() {
    std::vector<std::size_t> severe;
    std::vector<std::size_t> coded;
    for (std::size_t at = 0; at < run_.lines().size(); ++at) {
      const Finding& finding = run_.lines()[at].finding;
      if (finding.severity != Severity::none) severe.push_back(at);
      if (finding.code) coded.push_back(at);
    }
    append_list(to_, "severity", severe, [&](std::size_t at) {
      to_ += '[' + std::to_string(at) + ',' + severity_number(run_.lines()[at].finding) + ']';
    });
    append_list(to_, "code", coded, [&](std::size_t at) {
      to_ += '[' + std::to_string(at) + ',';
      append_code(run_.lines()[at].finding);
      to_.push_back(']');
    });
  }

  static std::string severity_number(const Finding& finding) {
    return std::to_string(static_cast<int>(finding.severity));
  }

  void append_code(const Finding& finding) {
    append_number(to_, finding.code);
    to_ += finding.exit_code ? ",1" : ",0";
  }

  void append_span(const Span& span) {
    const LogLine& first = run_.lines()[span.first];
    to_ += '[' + std::to_string(span.first) + ',' + std::to_string(span.last) + ',' + std::to_string(first.name) + ',';
    append_number(to_, first.index);
    to_.push_back(',');
    append_number(to_, span.next);
    to_ += ',' + std::to_string(static_cast<int>(span.ending)) + ',' + std::to_string(span.end) + ',' +
           severity_number(span.finding) + ',';
    append_code(span.finding);
    to_.push_back(']');
  }

  std::string& to_;
  const PageRun& run_;
};

}  // namespace

std::string page_data(const std::vector<PageRun>& runs) {
  std::string data = "{\"runs\":[";
  for (const PageRun& run : runs) {
    if (&run != &runs.front()) data.push_back(',');
    RunData(data, run).append();
  }
  return data += "]}";
}

}  // namespace log_tool
