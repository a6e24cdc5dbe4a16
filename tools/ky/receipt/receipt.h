#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/ports/types.h"
#include "platform/record/change.h"
#include "tools/ky/receipt/target_book.h"

namespace receipt {

/// What became of a thing that the script names.
enum class State { removed_now, already_absent, still_there };
[[nodiscard]] const char* to_text(State state);
/// The word for a kind of target in a published receipt.
[[nodiscard]] const char* to_text(host::TargetKind kind);

/// A line of the receipt.
struct Row {
  Target target;
  State state = State::already_absent;
  /// Of what is still there the reason; else empty, or what is to be known of its going.
  std::wstring reason{};
  ports::ErrorCode code = 0;             // of the reason, where the system gave one
  std::vector<std::int32_t> commands{};  // who names it
};

struct Receipt {
  std::vector<Row> rows;
  std::vector<NotNamed> not_named;

  [[nodiscard]] std::size_t count(State state) const;
};

/// A thing, how it stood before the run and after it, and who named it.
struct Thing {
  Target target;
  bool before = false;
  bool after = false;
  std::wstring note{};  // of one that is there after the run
  std::vector<NamingCommand> by{};
};

/// A process that was to be closed, and what became of it.
struct Closing {
  std::wstring name;
  std::wstring path;
  bool left = false;  // it was left alone, for the reason
  std::wstring reason{};
  ports::ErrorCode code = 0;
};

/// What the run itself noted. Paths as changes name them, keys of users under the users' own names.
struct Evidence {
  std::vector<record::Deletion> deletions{};
  std::vector<record::Move> moves{};
  std::vector<std::wstring> booked{};  // what goes at the next start
  std::vector<Closing> closings{};
  /// What the system says of a code; may be empty.
  std::function<std::wstring(ports::ErrorCode)> message{};
};

/// The line for one thing. It was removed now where it was there before, or came during the run, and is gone; that it
/// is gone without a deletion of the run's own, by a program that the run started, counts as well. The reason is that
/// of the thing's own deletion or of the first thing below it that stays; where nothing was tried, how far the commands
/// came that name it.
[[nodiscard]] Row decide(const Thing& thing, const Evidence& evidence);

}  // namespace receipt
