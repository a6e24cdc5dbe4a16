#include "tools/ky/rehearse/account.h"

#include "installer/utils/base/strings/utf8.h"

namespace rehearsal {

receipt::Account account_of(const Outcome& outcome, ports::CodePages& texts) {
  receipt::Account account;
  account.named = outcome.named;
  account.changes = outcome.changes;
  account.actions = outcome.actions;
  account.deletions = outcome.deletions;
  account.moves = outcome.moves;
  for (const record::SeenProcess& process : outcome.processes) {
    const ProcessEnd end = end_of(process);
    const std::wstring reason = base::strings::to_wide(reason_of(end.fate));
    account.closings.push_back({process.name, process.path, !reason.empty(), reason, end.code});
  }
  account.message = [&texts](ports::ErrorCode code) { return base::strings::to_wide(texts.system_message(code)); };
  return account;
}

}  // namespace rehearsal
