#pragma once

#include "platform/ports/text.h"
#include "tools/ky/receipt/settle.h"
#include "tools/ky/rehearse/outcome.h"

namespace rehearsal {

/// What a run's receipt is made from. `texts` says what the system has to say of a code, and outlives the account.
[[nodiscard]] receipt::Account account_of(const Outcome& outcome, ports::CodePages& texts);

}  // namespace rehearsal
