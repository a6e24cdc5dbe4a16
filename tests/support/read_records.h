#pragma once

#include <string>
#include <vector>

#include "diagnostics/reader/record.h"
#include "diagnostics/reader/time_stamp.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/utf8.h"

namespace support {

/// Keeps what a reader gives: each record as "hh:mm:ss:mmm THREAD message", line feeds in it as "\n".
class ReadRecords final : public diagnostics::reader::RecordSink {
 public:
  void record(const diagnostics::reader::Record& record) override {
    const auto field = [&](std::uint32_t unit, std::uint32_t range) { return record.time / unit % range; };
    std::string line = base::strings::format("%02u:%02u:%02u:%03u %u ", field(3'600'000, 24), field(60'000, 60),
                                             field(1000, 60), field(1, 1000), record.thread);
    for (const char c : base::strings::to_utf8(record.message)) {
      c == '\n' ? line += "\\n" : line += c;
    }
    lines.push_back(line);
    days.push_back(record.day.value_or(-1));
  }
  void problem(const diagnostics::reader::Problem& problem) override { problems.push_back(problem); }

  [[nodiscard]] std::string text() const {
    std::string all;
    for (const std::string& line : lines) all += line + '\n';
    return all;
  }
  [[nodiscard]] std::string told() const {
    std::string all;
    for (const auto& problem : problems) all += problem.line() + '\n';
    return all;
  }

  std::vector<std::string> lines;
  std::vector<std::int32_t> days;
  std::vector<diagnostics::reader::Problem> problems;
};

}  // namespace support
