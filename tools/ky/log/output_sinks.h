#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "diagnostics/reader/record.h"

namespace log_tool {

/// What tools know the kind by.
[[nodiscard]] const char* name_of(diagnostics::reader::ProblemKind kind);

/// What both outputs of `ky log read` share: records are written to one stream in large pieces, problems to the other,
/// in order as far as two streams have one.
class OutputSink : public diagnostics::reader::RecordSink {
 public:
  OutputSink(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

  void problem(const diagnostics::reader::Problem& problem) override;

  /// Writes what is kept back. False where the output cannot be written.
  [[nodiscard]] bool flush();

  /// How many problems were told, mere notes aside.
  [[nodiscard]] std::uint64_t problems() const { return problems_; }

 protected:
  /// Where a record's text goes.
  [[nodiscard]] std::string& text() { return text_; }
  void written();

 private:
  std::ostream& out_;
  std::ostream& err_;
  std::string text_;
  std::uint64_t problems_ = 0;
};

/// Records as lines: "[hh:mm:ss:mmm] thread message".
class TextSink final : public OutputSink {
 public:
  TextSink(std::ostream& out, std::ostream& err, bool name_runs) : OutputSink(out, err), name_runs_(name_runs) {}

  void begin_run(const std::string& name) override;
  void record(const diagnostics::reader::Record& record) override;

 private:
  const bool name_runs_;
};

/// Records and problems as JSON, an object a line.
class JsonSink final : public OutputSink {
 public:
  using OutputSink::OutputSink;

  void begin_run(const std::string& name) override { run_ = name; }
  void record(const diagnostics::reader::Record& record) override;
  void problem(const diagnostics::reader::Problem& problem) override;

 private:
  std::string run_;
};

}  // namespace log_tool
