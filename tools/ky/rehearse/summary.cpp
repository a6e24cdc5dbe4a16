#include "tools/ky/rehearse/summary.h"

#include <algorithm>
#include <array>
#include <map>
#include <ostream>

#include "installer/utils/base/strings/utf8.h"

namespace rehearsal {

namespace {

using base::strings::to_utf8;

/// What became of the things of one kind.
struct ChangeCount {
  std::size_t removed = 0;
  std::size_t added = 0;
  std::size_t altered = 0;
};

const std::map<std::string, std::array<const char*, 2>, std::less<>> kind_words = {
    {"file", {"file", "files"}},
    {"folder", {"folder", "folders"}},
    {"link", {"link", "links"}},
    {"registry-key", {"registry key", "registry keys"}},
    {"registry-value", {"registry value", "registry values"}},
    {"hive", {"mounted hive", "mounted hives"}},
    {"task", {"task", "tasks"}},
    {"driver-package", {"driver package", "driver packages"}},
    {"delayed-move", {"move booked for the next start", "moves booked for the next start"}},
};

std::string counted(std::size_t count, const std::string& kind) {
  const auto words = kind_words.find(kind);
  return std::to_string(count) + " " + (words == kind_words.end() ? kind : words->second[count == 1 ? 0 : 1]);
}

void print_commands(const Outcome& outcome, std::ostream& out) {
  const auto run = std::count_if(outcome.commands.begin(), outcome.commands.end(), [](const auto& c) { return c.run; });
  const auto failed = std::count_if(outcome.commands.begin(), outcome.commands.end(),
                                    [](const auto& c) { return c.run && c.result != 0; });
  out << "  Commands     " << run << " run, " << outcome.commands.size() - static_cast<std::size_t>(run) << " skipped";
  if (failed != 0) out << "; " << failed << " with a result other than 0";
  out << '\n';
  for (const CommandRun& command : outcome.commands) {
    if (command.run && command.result != 0) {
      out << "                 " << command.index << ": " << command.name << " gave " << command.result << '\n';
    }
  }
}

void print_changes(const Outcome& outcome, std::ostream& out) {
  std::map<std::string, ChangeCount> by_kind;
  for (const record::Change& change : outcome.changes) {
    ChangeCount& count = by_kind[change.kind];
    ++(!change.after ? count.removed : !change.before ? count.added : count.altered);
  }
  out << "  Changes      " << (by_kind.empty() ? "none\n" : "");
  const char* indent = "";
  for (const auto& [name, count] : by_kind) {
    const std::string& kind = name;
    const char* separator = "";
    out << indent;
    const auto part = [&](std::size_t number, const char* what) {
      if (number == 0) return;
      out << separator << counted(number, kind) << " " << what;
      separator = ", ";
    };
    part(count.removed, "removed");
    part(count.added, "added");
    part(count.altered, "altered");
    out << '\n';
    indent = "               ";
  }
}

/// How many things that had been absent before are worth their lines; result.json has them all.
constexpr std::size_t most_absent = 10;

void print_deletions(const Outcome& outcome, Fate fate, const char* heading, std::ostream& out) {
  const char* indent = heading;
  std::size_t count = 0;
  for (const record::Deletion& deletion : outcome.deletions) {
    if (fate_of(deletion) != fate || (++count > most_absent && fate == Fate::absent)) continue;
    out << indent << (deletion.path.empty() ? "(an empty path)" : to_utf8(deletion.path));
    if (fate == Fate::remains) out << "  (" << deletion.kind << ", error " << deletion.code << ")";
    out << '\n';
    indent = "               ";
  }
  if (fate == Fate::absent && count > most_absent) out << indent << "and " << count - most_absent << " more\n";
}

std::string reason_of(const ProcessEnd& end) {
  const std::string text = reason_of(end.fate);
  return text.empty() || end.code == 0 ? text : text + ", error " + std::to_string(end.code);
}

void print_processes(const Outcome& outcome, const char* heading, bool (*wanted)(ProcessFate), std::ostream& out) {
  const char* indent = heading;
  for (const record::SeenProcess& process : outcome.processes) {
    const ProcessEnd end = end_of(process);
    if (!wanted(end.fate)) continue;
    out << indent << to_utf8(process.path.empty() ? process.name : process.path);
    if (const std::string reason = reason_of(end); !reason.empty()) out << "  (" << reason << ")";
    out << '\n';
    indent = "               ";
  }
}

void print_all_processes(const Outcome& outcome, std::ostream& out) {
  print_processes(
      outcome, "  Closed       ", [](ProcessFate fate) { return fate == ProcessFate::closed; }, out);
  print_processes(
      outcome, "  Terminated   ", [](ProcessFate fate) { return fate == ProcessFate::terminated; }, out);
  const auto left = [](ProcessFate fate) { return fate != ProcessFate::closed && fate != ProcessFate::terminated; };
  print_processes(outcome, "  Left alone   ", left, out);
}

void print_end(const Outcome& outcome, std::ostream& out) {
  if (outcome.stopped) {
    out << "  Stopped      at " << outcome.stopped->index << ": " << outcome.stopped->command << ": "
        << outcome.stopped->reason << '\n';
  }
  if (!outcome.ended_early.empty()) out << "  Ended early  " << outcome.ended_early << '\n';
  out << "  Return code  " << outcome.return_code << '\n';
}

void print_receipt(const receipt::Receipt& receipt, std::ostream& out) {
  using receipt::State;
  out << "  Receipt      " << receipt.rows.size() << " named: " << receipt.count(State::removed_now) << " removed now, "
      << receipt.count(State::already_absent) << " already absent, " << receipt.count(State::still_there)
      << " still there";
  if (!receipt.not_named.empty()) out << "; " << receipt.not_named.size() << " not named";
  out << '\n';
  const char* indent = "  Still there  ";
  for (const receipt::Row& row : receipt.rows) {
    if (row.state != State::still_there) continue;
    out << indent << to_utf8(row.target.path);
    if (row.target.kind == host::TargetKind::registry_value) {
      out << '\\' << (row.target.value.empty() ? "(default)" : to_utf8(row.target.value));
    }
    out << "  (" << receipt::to_text(row.target.kind) << ": " << to_utf8(row.reason) << ")\n";
    indent = "               ";
  }
  indent = "  Not named    ";
  for (const receipt::NotNamed& missing : receipt.not_named) {
    out << indent << missing.index << ": " << missing.command << " " << missing.what.attribute << " \""
        << to_utf8(missing.what.text) << "\": " << to_utf8(missing.what.reason) << '\n';
    indent = "               ";
  }
}

}  // namespace

void print_summary(const SummaryFrame& frame, const Outcome& outcome, const receipt::Receipt* receipt,
                   std::ostream& out) {
  out << frame.title << "\n\n";
  print_commands(outcome, out);
  print_changes(outcome, out);
  for (const record::Action& action : outcome.actions) {
    out << "  Done         " << action.kind << ": " << to_utf8(action.text) << '\n';
  }
  print_all_processes(outcome, out);
  print_deletions(outcome, Fate::removed, "  Removed      ", out);
  print_deletions(outcome, Fate::absent, "  Was absent   ", out);
  if (receipt == nullptr) print_deletions(outcome, Fate::remains, "  Still there  ", out);
  if (receipt != nullptr) print_receipt(*receipt, out);
  print_end(outcome, out);
  if (frame.files.empty()) return;
  out << "  Files        " << frame.folder << ":";
  for (const std::string& file : frame.files) out << " " << file;
  out << '\n';
}

}  // namespace rehearsal
