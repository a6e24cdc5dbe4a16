#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/machine/state.h"
#include "tools/ky/receipt/receipt.h"

namespace receipt {

/// What a run notes of itself, as a receipt needs it.
struct Account {
  Named named;
  std::vector<record::Change> changes;
  std::vector<record::Action> actions;
  std::vector<record::Deletion> deletions;
  std::vector<record::Move> moves;
  std::vector<Closing> closings;
  std::function<std::wstring(ports::ErrorCode)> message;
};

/// The receipt of a run: each thing is looked for on the machine as it was before and as it is after. What is named for
/// each user has a line for each.
[[nodiscard]] Receipt settle(const Account& account, machine::State before, machine::State after);

}  // namespace receipt
