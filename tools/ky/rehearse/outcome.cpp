#include "tools/ky/rehearse/outcome.h"

#include "platform/ports/codes.h"

namespace rehearsal {

Fate fate_of(const record::Deletion& deletion) {
  if (deletion.code == ports::code::file_not_found || deletion.code == ports::code::path_not_found) return Fate::absent;
  return deletion.gone ? Fate::removed : Fate::remains;
}

const char* to_text(Fate fate) {
  switch (fate) {
    case Fate::removed:
      return "removed";
    case Fate::absent:
      return "absent";
    case Fate::remains:
      return "remains";
  }
  return "";
}

const char* to_text(record::LogFate fate) {
  switch (fate) {
    case record::LogFate::written:
      return "written";
    case record::LogFate::pruned:
      return "pruned";
    case record::LogFate::remains:
      return "remains";
  }
  return "";
}

ProcessEnd end_of(const record::SeenProcess& process) {
  if (process.terminated) return {ProcessFate::terminated};
  if (process.let_go) return {ProcessFate::not_ours};
  if (process.opened) {
    return process.runs ? ProcessEnd{ProcessFate::still_runs, process.terminate_error} : ProcessEnd{};
  }
  // One that was recognised was asked to close, even where it could not be opened.
  const bool asked = !process.path.empty();
  if (process.open_error != 0) {
    return asked && !process.runs ? ProcessEnd{} : ProcessEnd{ProcessFate::not_opened, process.open_error};
  }
  if (!asked) return {ProcessFate::unreadable, process.path_error};
  return {ProcessFate::not_ours};
}

const char* reason_of(ProcessFate fate) {
  switch (fate) {
    case ProcessFate::not_ours:
      return "another file of that name";
    case ProcessFate::unreadable:
      return "its path cannot be read";
    case ProcessFate::not_opened:
      return "it cannot be opened";
    case ProcessFate::still_runs:
      return "it still runs";
    case ProcessFate::closed:
    case ProcessFate::terminated:
      break;
  }
  return "";
}

bool went_well(const Outcome& outcome) {
  return outcome.return_code == 0 && outcome.ended_early.empty() && !outcome.stopped;
}

}  // namespace rehearsal
