#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include "tools/ky/receipt/receipt.h"
#include "tools/ky/rehearse/outcome.h"
#include "tools/ky/rehearse/output_folder.h"

namespace rehearsal {

/// Collects what a run leaves for the desk, and writes it at the end: in the ordinary way, or in the moment in which
/// the process stops.
class Report {
 public:
  /// `title` heads the summary on `out`; failures to write go to `err`.
  Report(std::string title, OutputFolder& folder, std::ostream& out, std::ostream& err)
      : title_(std::move(title)), folder_(folder), out_(out), err_(err) {}

  /// Appends a record to the clear-text log.
  void log(std::string_view record) { log_ += record; }
  /// Reads the run's own log once the run has ended; gives nothing where the run kept none, and the records of `log`
  /// stand for it then.
  using LogReader = std::function<std::optional<std::string>(const Outcome&)>;
  void read_log_by(LogReader reader) { log_reader_ = std::move(reader); }
  /// A further file, made when the run has ended.
  void add_file(std::string name, std::function<std::string()> content) {
    extra_name_ = std::move(name);
    extra_ = std::move(content);
  }
  /// Settles what became of everything that the script names, when the run has ended. The summary then ends with it,
  /// it is written to `file` where there is one, and what is still there makes the exit code 3.
  using Settle = std::function<receipt::Receipt(const Outcome&)>;
  void add_receipt(Settle settle, std::optional<std::string> file) {
    settle_ = std::move(settle);
    receipt_file_ = std::move(file);
  }
  /// Whether log.txt is written; it is unless the run's log is to stay sealed.
  void keep_log(bool keep) { keep_log_ = keep; }

  /// Makes sure that there is a place for the files; throws `workbench::BadInput` where there is none.
  void open() { folder_.make(); }

  /// Writes the files and the summary. Gives the exit code: 1 where the process stopped or something could not be
  /// written; 3 where the receipt names what is still there; 0 when the run went well, else 1.
  int finish(const Outcome& outcome);

 private:
  bool write(const std::string& name, const std::string& bytes);
  bool write_receipt(const receipt::Receipt& receipt);

  std::string title_;
  OutputFolder& folder_;
  std::ostream& out_;
  std::ostream& err_;
  std::string log_;
  LogReader log_reader_;
  bool keep_log_ = true;
  std::string extra_name_;
  std::function<std::string()> extra_;
  Settle settle_;
  std::optional<std::string> receipt_file_;
};

}  // namespace rehearsal
