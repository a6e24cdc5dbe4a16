#include "tools/ky/rehearse/report.h"

#include <ostream>

#include "platform/desk/desk.h"
#include "tools/ky/receipt/receipt_json.h"
#include "tools/ky/rehearse/result_json.h"
#include "tools/ky/rehearse/summary.h"

namespace rehearsal {

namespace {
constexpr int still_there_code = 3;
}

int Report::finish(const Outcome& outcome) {
  bool written = write("result.json", to_json(outcome));
  const std::optional<std::string> read = log_reader_ ? log_reader_(outcome) : std::nullopt;
  if (keep_log_) written = write("log.txt", read.value_or(log_)) && written;
  if (extra_) written = write(extra_name_, extra_()) && written;
  const std::optional<receipt::Receipt> receipt =
      settle_ ? std::optional<receipt::Receipt>(settle_(outcome)) : std::nullopt;
  if (receipt) written = write_receipt(*receipt) && written;
  print_summary({title_, folder_.path(), folder_.files()}, outcome, receipt ? &*receipt : nullptr, out_);
  out_.flush();
  if (!written || outcome.stopped) return 1;
  if (receipt && receipt->count(receipt::State::still_there) != 0) return still_there_code;
  return went_well(outcome) ? 0 : 1;
}

bool Report::write_receipt(const receipt::Receipt& receipt) {
  if (!receipt_file_) return true;
  const std::string reason = desk::write_file(*receipt_file_, receipt::to_json(receipt));
  if (!reason.empty()) err_ << "ky: " << reason << '\n';
  return reason.empty();
}

bool Report::write(const std::string& name, const std::string& bytes) {
  const std::string reason = folder_.write(name, bytes);
  if (!reason.empty()) err_ << "ky: " << reason << '\n';
  return reason.empty();
}

}  // namespace rehearsal
