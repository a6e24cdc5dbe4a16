#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "diagnostics/reader/record.h"
#include "tools/ky/log/spans.h"

namespace log_tool {

/// Numbers for texts, in the order of their first appearance.
class TextTable {
 public:
  [[nodiscard]] std::uint32_t number_of(const std::string& text);
  [[nodiscard]] const std::vector<std::string>& texts() const { return texts_; }

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::vector<std::string> texts_;
};

/// What the page shows of a record besides its line.
struct PageRecord {
  std::int64_t time = 0;   // as it was logged: milliseconds since 1970-01-01, local
  std::uint32_t file = 0;  // number of its name
  std::uint64_t offset = 0;
  std::string message;  // a JSON string, for a script element
};

struct PageThread {
  std::uint32_t id = 0;     // 0: not known
  std::string description;  // as a JSON string; may be empty
  std::int64_t latest = 0;  // time of its last record
  std::int64_t at = 0;      // the same, where the clock was never set back
  bool begun = false;
};

/// One run on its way to the page.
class PageRun {
 public:
  explicit PageRun(std::string name) : name_(std::move(name)) {}

  /// Gives how many bytes the record takes.
  std::size_t add(const diagnostics::reader::Record& record);
  void add(const diagnostics::reader::Problem& problem) { problems_.push_back(problem); }
  /// Removes the oldest records.
  void leave_out(std::size_t records);

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] bool dated() const { return dated_; }
  [[nodiscard]] std::size_t left_out() const { return left_out_; }
  [[nodiscard]] const std::vector<LogLine>& lines() const {
    return lines_;
  }  // their threads are positions in `threads`
  [[nodiscard]] const std::vector<PageRecord>& records() const { return records_; }
  [[nodiscard]] const std::vector<PageThread>& threads() const { return threads_; }
  [[nodiscard]] const std::vector<std::string>& names() const { return names_.texts(); }  // of commands
  [[nodiscard]] const std::vector<std::string>& files() const { return files_.texts(); }
  [[nodiscard]] const std::vector<diagnostics::reader::Problem>& problems() const { return problems_; }

 private:
  [[nodiscard]] std::uint32_t thread_of(const diagnostics::reader::Record& record);
  [[nodiscard]] std::int64_t time_of(const diagnostics::reader::Record& record, const PageThread& thread);

  std::string name_;
  bool dated_ = false;
  std::size_t left_out_ = 0;
  std::vector<LogLine> lines_;
  std::vector<PageRecord> records_;
  std::vector<PageThread> threads_;
  std::unordered_map<std::uint32_t, std::uint32_t> thread_numbers_;
  TextTable names_;
  TextTable files_;
  std::vector<diagnostics::reader::Problem> problems_;
};

}  // namespace log_tool
