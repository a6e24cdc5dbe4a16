#include "tools/ky/receipt/receipt.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "installer/utils/base/strings/case_fold.h"
#include "platform/ports/codes.h"
#include "platform/record/paths.h"

namespace receipt {

namespace {

using base::strings::equal_ignoring_case;
using host::TargetKind;

bool is_path(TargetKind kind) {
  return kind == TargetKind::file || kind == TargetKind::folder;
}

bool is_process(TargetKind kind) {
  return kind == TargetKind::process_file || kind == TargetKind::process_name;
}

/// The kind that a deletion of such a thing is noted under is not looked at: what matters is which tree it lies in.
bool in_same_tree(const record::Deletion& deletion, TargetKind kind) {
  if (deletion.kind == "registry-key") return kind == TargetKind::registry_key;
  if (deletion.kind == "registry-value") return kind == TargetKind::registry_value || kind == TargetKind::registry_key;
  if (deletion.kind == "task") return kind == TargetKind::task;
  return is_path(kind);
}

/// The same for a note under the very path: a key and a value may have one path.
bool is_of(const record::Deletion& deletion, TargetKind kind) {
  return in_same_tree(deletion, kind) && (kind != TargetKind::registry_key || deletion.kind == "registry-key");
}

/// How the run's notes name it.
std::wstring noted_name(const Target& target) {
  if (is_process(target.kind)) return target.path;
  std::wstring path = record::plain_path(target.path);
  if (target.kind == TargetKind::task && !path.starts_with(L'\\')) path.insert(0, 1, L'\\');
  if (target.kind == TargetKind::registry_value) {
    path.append(1, L'\\').append(target.value.empty() ? L"(default)" : target.value);
  }
  return path;
}

bool failed(const record::Deletion& deletion) {
  const bool absent = deletion.code == ports::code::file_not_found || deletion.code == ports::code::path_not_found;
  return !deletion.gone && !absent;
}

std::wstring with_message(ports::ErrorCode code, const Evidence& evidence) {
  std::wstring text = L"error " + std::to_wstring(code);
  std::wstring message = evidence.message ? evidence.message(code) : L"";
  while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r' || message.back() == L'.')) {
    message.pop_back();
  }
  return message.empty() ? text : text + L", " + message;
}

bool meant(const Closing& closing, const Target& target) {
  return target.kind == TargetKind::process_name ? closing.name.starts_with(target.path)
                                                 : equal_ignoring_case(closing.path, target.path);
}

}  // namespace

/// Decides about one thing that is still there.
class Findings::Reason {
 public:
  Reason(const Findings& findings, const Thing& thing, Row& row)
      : findings_(findings), thing_(thing), name_(noted_name(thing.target)), row_(row) {}

  void find() {
    const bool noted = is_process(thing_.target.kind) ? by_closing() : !refused() && (by_booking() || by_deletion());
    if (noted) return;
    by_commands();
    if (thing_.note.empty()) return;
    if (!row_.reason.empty()) row_.reason += L"; ";
    row_.reason += thing_.note;
  }

 private:
  [[nodiscard]] std::wstring told(ports::ErrorCode code) const { return with_message(code, findings_.evidence_); }

  /// Whether every command that ran refused the thing: what another left below it is not the reason then.
  [[nodiscard]] bool refused() const {
    const auto ran = [](const NamingCommand& command) { return command.run; };
    return std::any_of(thing_.by.begin(), thing_.by.end(), ran) &&
           std::all_of(thing_.by.begin(), thing_.by.end(), [](const NamingCommand& command) {
             return !command.run || command.result == ports::code::invalid_parameter;
           });
  }

  bool by_closing() {
    for (const Closing& closing : findings_.evidence_.closings) {
      if (!closing.left || !meant(closing, thing_.target)) continue;
      row_.code = closing.code;
      row_.reason = closing.reason;
      if (closing.code != 0) row_.reason += L" (" + told(closing.code) + L")";
      return true;
    }
    return false;
  }

  bool by_booking() {
    if (!is_path(thing_.target.kind)) return false;
    const auto any = [](const std::wstring&) { return true; };
    if (findings_.booked_.first(name_, any) != nullptr) {
      row_.reason = L"booked for the next start";
      return true;
    }
    // What stays below for good tells more than what goes at the next start.
    const std::wstring* const below = findings_.booked_.first_below(name_, any);
    if (below == nullptr || first_failure_below() != nullptr) return false;
    row_.reason = L"'" + *below + L"' is booked for the next start";
    return true;
  }

  [[nodiscard]] bool failed_here(const record::Deletion& deletion) const {
    return in_same_tree(deletion, thing_.target.kind) && failed(deletion);
  }

  /// The deepest come first, since what lies above them fails for their sake.
  [[nodiscard]] const record::Deletion* first_failure_below() const {
    return findings_.deletions_.first_below(name_, [this](const record::Deletion& deletion) {
      return failed_here(deletion) &&
             findings_.booked_.first(deletion.path, [](const std::wstring&) { return true; }) == nullptr;
    });
  }

  bool by_deletion() {
    const record::Deletion* found = first_failure_below();
    if (found != nullptr) row_.reason = L"'" + found->path + L"' stays: ";
    if (found == nullptr) {
      found = findings_.deletions_.first(name_, [this](const record::Deletion& deletion) {
        return is_of(deletion, thing_.target.kind) && failed(deletion);
      });
    }
    if (found == nullptr) return false;
    row_.code = found->code;
    row_.reason += found->code == 0 ? L"deleted, and there again or still held" : told(found->code);
    return true;
  }

  void by_commands() {
    const auto furthest =
        std::max_element(thing_.by.begin(), thing_.by.end(), [](const NamingCommand& left, const NamingCommand& right) {
          return std::tie(left.run, left.reached, left.result) < std::tie(right.run, right.reached, right.result);
        });
    if (furthest == thing_.by.end() || !furthest->reached) {
      row_.reason = L"the run never came to its command";
    } else if (!furthest->run) {
      row_.reason = L"its command was skipped";
    } else {
      row_.code = furthest->result;
      row_.reason = row_.code != 0        ? L"its command gave " + told(row_.code)
                    : thing_.note.empty() ? L"its command ran and noted no failure"
                                          : L"its command ran";
    }
  }

  const Findings& findings_;
  const Thing& thing_;
  const std::wstring name_;
  Row& row_;
};

Findings::Findings(Evidence evidence) : evidence_(std::move(evidence)) {
  for (const record::Deletion& deletion : evidence_.deletions) deletions_.add(deletion.path, deletion);
  for (const record::Move& move : evidence_.moves) moves_.add(move.from, move);
  for (const std::wstring& path : evidence_.booked) booked_.add(path, path);
}

/// What moved aside, and whether it goes at the next start.
std::wstring Findings::moved_aside(const Target& target) const {
  if (!is_path(target.kind)) return {};
  const auto any = [](const auto&) { return true; };
  const std::wstring name = noted_name(target);
  const record::Move* const whole = moves_.first(name, any);
  const record::Move* const move = whole != nullptr ? whole : moves_.first_below(name, any);
  if (move == nullptr) return {};
  const bool goes = booked_.first(move->to, any) != nullptr;
  return (whole == nullptr ? L"'" + move->from + L"' " : L"") + L"moved to '" + move->to +
         (goes ? L"', which is booked for the next start" : L"', which stays");
}

bool Findings::deleted_by_run(const Target& target) const {
  if (is_process(target.kind)) {
    return std::any_of(evidence_.closings.begin(), evidence_.closings.end(),
                       [&target](const Closing& closing) { return !closing.left && meant(closing, target); });
  }
  const auto deleted = [&target](const record::Deletion& deletion) {
    return deletion.code == 0 && is_of(deletion, target.kind);
  };
  return deletions_.first(noted_name(target), deleted) != nullptr;
}

Row Findings::decide(const Thing& thing) const {
  Row row;
  row.target = thing.target;
  for (const NamingCommand& command : thing.by) row.commands.push_back(command.index);
  if (thing.after) {
    row.state = State::still_there;
    Reason(*this, thing, row).find();
  } else if (thing.before || deleted_by_run(thing.target)) {
    row.state = State::removed_now;
    row.reason = moved_aside(thing.target);
  }
  return row;
}

const char* to_text(State state) {
  switch (state) {
    case State::removed_now:
      return "removed-now";
    case State::already_absent:
      return "already-absent";
    case State::still_there:
      return "still-there";
  }
  return "";
}

const char* to_text(TargetKind kind) {
  switch (kind) {
    case TargetKind::file:
      return "file";
    case TargetKind::folder:
      return "folder";
    case TargetKind::registry_key:
    case TargetKind::ifeo_keys:
      return "registry-key";
    case TargetKind::registry_value:
      return "registry-value";
    case TargetKind::task:
      return "task";
    case TargetKind::driver_package:
      return "driver-package";
    case TargetKind::process_file:
      return "process";
    case TargetKind::process_name:
      return "process-name";
  }
  return "";
}

std::size_t Receipt::count(State state) const {
  return static_cast<std::size_t>(
      std::count_if(rows.begin(), rows.end(), [state](const Row& row) { return row.state == state; }));
}

}  // namespace receipt
