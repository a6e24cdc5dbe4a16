#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/ky/receipt/targets.h"

namespace receipt {

/// How far a deleting or closing command came.
struct NamingCommand {
  std::int32_t index = -1;
  std::string name;
  bool reached = false;      // the run came to it
  bool run = false;          // and its condition was met, at least once
  std::uint32_t result = 0;  // of its last run
  friend bool operator==(const NamingCommand&, const NamingCommand&) = default;
};

/// One thing, and who named it.
struct Naming {
  Target target;
  std::vector<NamingCommand> by;
};

/// What could not be named.
struct NotNamed {
  std::int32_t index = -1;
  std::string command;
  Unnamed what;
  friend bool operator==(const NotNamed&, const NotNamed&) = default;
};

/// All that a script's deleting and closing commands name, in the order of the script, each thing once.
struct Named {
  std::vector<Naming> things;
  std::vector<NotNamed> not_named;
};

/// Follows a run and notes what its deleting and closing commands name: each time that the run comes to one, with the
/// variables as they are then. What a command that the run never came to would name is read off the variables at the
/// end; so is what could not be named while the command was skipped.
class TargetBook {
 public:
  TargetBook() = default;
  /// `indexes` are those of the script's elements, in their order.
  TargetBook(const script::PlainScript& script, const std::vector<std::int32_t>& indexes);

  /// The run comes to a command. Where `after` never follows, the command ran and the process stopped in it.
  void before(std::int32_t index, const Variables& variables);
  void after(std::int32_t index, bool run, std::uint32_t result);

  [[nodiscard]] Named names(const Variables& at_end) const;

 private:
  struct Entry {
    const host::CommandSchema* schema = nullptr;
    script::PlainElement element;
    NamingCommand command;
    Kept kept;
    Names seen;
    Names coming;      // since `before`
    bool open = true;  // there is something to be named at the end
  };

  [[nodiscard]] Entry* find(std::int32_t index);
  static void settle(Entry& entry, bool run, std::uint32_t result);

  std::vector<Entry> entries_;
};

/// True where both mean the same thing.
[[nodiscard]] bool same_thing(const Target& left, const Target& right);

}  // namespace receipt
