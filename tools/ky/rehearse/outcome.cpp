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

bool went_well(const Outcome& outcome) {
  return outcome.return_code == 0 && outcome.ended_early.empty() && !outcome.stopped;
}

}  // namespace rehearsal
