#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "installer/utils/base/strings/case_fold.h"
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

/// Things that were noted, to be found by path in any case and by the path that they lie below.
template <class Item>
class ByPath {
 public:
  /// The item outlives this object; those of one index lie in one array.
  void add(const std::wstring& path, const Item& item) { items_[base::strings::lower_cased(path)].push_back(&item); }

  /// Of those at the path, the one that was noted first; null where there is none.
  template <class Wanted>
  [[nodiscard]] const Item* first(const std::wstring& path, Wanted wanted) const {
    const auto found = items_.find(base::strings::lower_cased(path));
    return found == items_.end() ? nullptr : earliest(nullptr, found->second, wanted);
  }

  /// The same of all that lie below it.
  template <class Wanted>
  [[nodiscard]] const Item* first_below(const std::wstring& path, Wanted wanted) const {
    std::wstring start = base::strings::lower_cased(path);
    if (!start.ends_with(L'\\')) start += L'\\';
    const Item* found = nullptr;
    for (auto at = items_.upper_bound(start); at != items_.end() && at->first.starts_with(start); ++at) {
      found = earliest(found, at->second, wanted);
    }
    return found;
  }

 private:
  using Items = std::vector<const Item*>;

  template <class Wanted>
  static const Item* earliest(const Item* known, const Items& items, Wanted wanted) {
    for (const Item* const item : items) {
      if ((known == nullptr || item < known) && wanted(*item)) known = item;
    }
    return known;
  }

  std::map<std::wstring, Items> items_;
};

/// Decides on the lines of a receipt.
class Findings {
 public:
  explicit Findings(Evidence evidence);
  Findings(const Findings&) = delete;
  Findings& operator=(const Findings&) = delete;

  /// The line for one thing. It was removed now where it was there before, or was deleted by the run, and is gone; that
  /// it went by a program that the run started counts as well. The reason is that of the thing's own deletion or of the
  /// first thing below it that stays; where nothing was tried, how far the commands came that name it.
  [[nodiscard]] Row decide(const Thing& thing) const;

 private:
  class Reason;

  [[nodiscard]] std::wstring moved_aside(const Target& target) const;
  [[nodiscard]] bool deleted_by_run(const Target& target) const;

  const Evidence evidence_;
  ByPath<record::Deletion> deletions_;
  ByPath<record::Move> moves_;
  ByPath<std::wstring> booked_;
};

}  // namespace receipt
