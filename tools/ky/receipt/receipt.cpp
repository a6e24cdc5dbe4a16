#include "tools/ky/receipt/receipt.h"

#include <algorithm>
#include <tuple>

#include "installer/utils/base/strings/case_fold.h"
#include "platform/ports/codes.h"

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

/// How deletions name it.
std::wstring noted_name(const Target& target) {
  std::wstring path = target.path;
  while (path.size() > 3 && path.ends_with(L'\\')) path.pop_back();
  if (target.kind == TargetKind::task && !path.starts_with(L'\\')) path.insert(0, 1, L'\\');
  if (target.kind == TargetKind::registry_value) {
    path.append(1, L'\\').append(target.value.empty() ? L"(default)" : target.value);
  }
  return path;
}

bool lies_below(const std::wstring& path, const std::wstring& folder) {
  return path.size() > folder.size() && path[folder.size()] == L'\\' &&
         equal_ignoring_case(path.substr(0, folder.size()), folder);
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

/// Decides about one thing that is still there.
class Reason {
 public:
  Reason(const Thing& thing, const Evidence& evidence, Row& row)
      : thing_(thing), evidence_(evidence), name_(noted_name(thing.target)), row_(row) {}

  void find() {
    if (is_process(thing_.target.kind) ? by_closing() : by_booking() || by_deletion()) return;
    by_commands();
    if (thing_.note.empty()) return;
    if (!row_.reason.empty()) row_.reason += L"; ";
    row_.reason += thing_.note;
  }

 private:
  bool by_closing() {
    const bool by_name = thing_.target.kind == TargetKind::process_name;
    for (const Closing& closing : evidence_.closings) {
      const bool meant = by_name ? closing.name.starts_with(name_) : equal_ignoring_case(closing.path, name_);
      if (!meant || !closing.left) continue;
      row_.code = closing.code;
      row_.reason = closing.reason;
      if (closing.code != 0) row_.reason += L" (" + with_message(closing.code, evidence_) + L")";
      return true;
    }
    return false;
  }

  bool by_booking() {
    if (!is_path(thing_.target.kind)) return false;
    const auto said = [this](const std::wstring& what, const wchar_t* text) {
      row_.reason = what + text;
      return true;
    };
    for (const std::wstring& path : evidence_.booked) {
      if (equal_ignoring_case(path, name_)) return said(L"", L"booked for the next start");
    }
    // What stays below for good tells more than what goes at the next start.
    if (first_failure_below() != nullptr) return false;
    for (const std::wstring& path : evidence_.booked) {
      if (lies_below(path, name_)) return said(L"'" + path + L"' is ", L"booked for the next start");
    }
    return false;
  }

  [[nodiscard]] bool booked(const std::wstring& path) const {
    return std::any_of(evidence_.booked.begin(), evidence_.booked.end(),
                       [&path](const std::wstring& known) { return equal_ignoring_case(known, path); });
  }

  /// The deepest come first, since what lies above them fails for their sake.
  [[nodiscard]] const record::Deletion* first_failure_below() const {
    for (const record::Deletion& deletion : evidence_.deletions) {
      if (in_same_tree(deletion, thing_.target.kind) && failed(deletion) && lies_below(deletion.path, name_) &&
          !booked(deletion.path)) {
        return &deletion;
      }
    }
    return nullptr;
  }

  bool by_deletion() {
    const record::Deletion* found = first_failure_below();
    const bool below = found != nullptr;
    for (const record::Deletion& deletion : evidence_.deletions) {
      if (found != nullptr) break;
      if (in_same_tree(deletion, thing_.target.kind) && failed(deletion) && equal_ignoring_case(deletion.path, name_)) {
        found = &deletion;
      }
    }
    if (found == nullptr) return false;
    row_.code = found->code;
    if (below) row_.reason = L"'" + found->path + L"' stays: ";
    row_.reason += found->code == 0 ? L"deleted, and there again or still held" : with_message(found->code, evidence_);
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
      row_.reason = row_.code != 0        ? L"its command gave " + with_message(row_.code, evidence_)
                    : thing_.note.empty() ? L"its command ran and noted no failure"
                                          : L"its command ran";
    }
  }

  const Thing& thing_;
  const Evidence& evidence_;
  const std::wstring name_;
  Row& row_;
};

/// What moved aside and goes at the next start.
std::wstring moved_aside(const Target& target, const Evidence& evidence) {
  if (!is_path(target.kind)) return {};
  const std::wstring name = noted_name(target);
  for (const record::Move& move : evidence.moves) {
    if (!equal_ignoring_case(move.from, name) && !lies_below(move.from, name)) continue;
    const bool goes = std::any_of(evidence.booked.begin(), evidence.booked.end(),
                                  [&move](const std::wstring& path) { return equal_ignoring_case(path, move.to); });
    const std::wstring what = lies_below(move.from, name) ? L"'" + move.from + L"' " : L"";
    return what + L"moved to '" + move.to + (goes ? L"', which is booked for the next start" : L"', which stays");
  }
  return {};
}

bool deleted_by_run(const Thing& thing, const Evidence& evidence) {
  const std::wstring name = noted_name(thing.target);
  if (is_process(thing.target.kind)) {
    const bool by_name = thing.target.kind == TargetKind::process_name;
    return std::any_of(evidence.closings.begin(), evidence.closings.end(), [&](const Closing& closing) {
      return !closing.left && (by_name ? closing.name.starts_with(name) : equal_ignoring_case(closing.path, name));
    });
  }
  return std::any_of(evidence.deletions.begin(), evidence.deletions.end(), [&](const record::Deletion& deletion) {
    return deletion.code == 0 && in_same_tree(deletion, thing.target.kind) && equal_ignoring_case(deletion.path, name);
  });
}

}  // namespace

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

Row decide(const Thing& thing, const Evidence& evidence) {
  Row row;
  row.target = thing.target;
  for (const NamingCommand& command : thing.by) row.commands.push_back(command.index);
  if (thing.after) {
    row.state = State::still_there;
    Reason(thing, evidence, row).find();
  } else if (thing.before || deleted_by_run(thing, evidence)) {
    row.state = State::removed_now;
    row.reason = moved_aside(thing.target, evidence);
  }
  return row;
}

}  // namespace receipt
