#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "platform/record/change.h"
#include "platform/record/seen_process.h"
#include "tools/ky/receipt/target_book.h"

namespace rehearsal {

/// One command that the run came to.
struct CommandRun {
  std::int32_t index = -1;
  std::string name;
  bool run = false;          // false: skipped by its condition
  std::uint32_t result = 0;  // of `Execute`
  std::int32_t next = -1;
};

/// Where the process would have stopped, or stopped for real.
struct Stop {
  std::int32_t index = -1;
  std::string command;
  std::string reason;
};

/// The value of an `int_` or `String_` key; nothing for a string key that is empty.
using GlobalValue = std::variant<std::monostate, std::int32_t, std::wstring>;

/// How a run ended, on plain data.
struct Outcome {
  std::int32_t return_code = 0;
  /// Why the run ended before its last command; empty where it did not.
  std::string ended_early;
  std::optional<Stop> stopped;
  std::vector<CommandRun> commands;
  std::map<std::string, GlobalValue> globals;
  /// Names of globals whose values depend on the place and the moment.
  std::set<std::string> environment;
  std::vector<record::Change> changes;
  std::vector<record::Action> actions;
  std::vector<record::Deletion> deletions;
  std::vector<record::LogFile> logs;
  std::vector<record::SeenProcess> processes;
  std::vector<record::Move> moves;
  /// What the script's deleting and closing commands name.
  receipt::Named named;
};

/// What became of a thing that was to be deleted.
enum class Fate { removed, absent, remains };
[[nodiscard]] Fate fate_of(const record::Deletion& deletion);
[[nodiscard]] const char* to_text(Fate fate);
[[nodiscard]] const char* to_text(record::LogFate fate);

/// What became of a process that was to be closed, or was looked at for it.
enum class ProcessFate {
  closed,      // it ended by itself, within its time
  terminated,  // it did not
  // What was left alone, and why.
  not_ours,    // another file
  unreadable,  // its path was not told
  not_opened,
  still_runs,  // it could not be terminated
};
struct ProcessEnd {
  ProcessFate fate = ProcessFate::closed;
  ports::ErrorCode code = 0;  // of what failed
};
[[nodiscard]] ProcessEnd end_of(const record::SeenProcess& process);
/// Why it was left alone, in words; empty for one that ended.
[[nodiscard]] const char* reason_of(ProcessFate fate);

/// True when the run came to its end with return code 0.
[[nodiscard]] bool went_well(const Outcome& outcome);

}  // namespace rehearsal
