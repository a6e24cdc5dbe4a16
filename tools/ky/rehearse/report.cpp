#include "tools/ky/rehearse/report.h"

#include <ostream>

#include "tools/ky/rehearse/result_json.h"
#include "tools/ky/rehearse/summary.h"

namespace rehearsal {

int Report::finish(const Outcome& outcome) {
  bool written = write("result.json", to_json(outcome));
  const std::optional<std::string> read = log_reader_ ? log_reader_(outcome) : std::nullopt;
  if (keep_log_) written = write("log.txt", read.value_or(log_)) && written;
  if (extra_) written = write(extra_name_, extra_()) && written;
  print_summary({title_, folder_.path(), folder_.files()}, outcome, out_);
  out_.flush();
  return written && went_well(outcome) ? 0 : 1;
}

bool Report::write(const std::string& name, const std::string& bytes) {
  const std::string reason = folder_.write(name, bytes);
  if (!reason.empty()) err_ << "ky: " << reason << '\n';
  return reason.empty();
}

}  // namespace rehearsal
