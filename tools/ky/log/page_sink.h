#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "diagnostics/reader/record.h"
#include "tools/ky/log/page_model.h"

namespace log_tool {

/// What a page takes, over all its runs. A browser holds all of it in memory, so that beyond that the oldest records
/// are left out, and page and error stream say so.
struct PageLimits {
  std::size_t records = 500'000;
  std::size_t bytes = std::size_t{128} << 20;  // of messages
};

/// Makes one self-contained page of what is read; problems go to `err` as well.
class PageSink final : public diagnostics::reader::RecordSink {
 public:
  explicit PageSink(std::ostream& err, const PageLimits& limits = {}) : err_(err), limits_(limits) {}

  void begin_run(const std::string& name) override { runs_.emplace_back(name); }
  void record(const diagnostics::reader::Record& record) override;
  void problem(const diagnostics::reader::Problem& problem) override;

  /// The whole page. Tells `err` how much was left out.
  [[nodiscard]] std::string page();

  /// How many problems were told, mere notes aside.
  [[nodiscard]] std::uint64_t problems() const { return problems_; }

 private:
  void keep_within(std::size_t slack);

  std::ostream& err_;
  const PageLimits limits_;
  std::vector<PageRun> runs_;
  std::size_t records_ = 0;
  std::size_t bytes_ = 0;
  std::uint64_t problems_ = 0;
};

}  // namespace log_tool
