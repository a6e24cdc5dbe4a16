#include "tools/ky/rehearse/result_json.h"

#include <picojson.h>

#include "installer/utils/base/strings/utf8.h"

namespace rehearsal {

namespace {

using base::strings::to_utf8;
using picojson::array;
using picojson::object;
using picojson::value;

constexpr std::int64_t format_version = 1;

value number(std::int64_t n) {
  return value(n);
}

value text_or_null(const std::optional<std::wstring>& text) {
  return text ? value(to_utf8(*text)) : value();
}

template <class Items, class ToValue>
value list(const Items& items, ToValue to_value) {
  array out;
  out.reserve(items.size());
  for (const auto& item : items) out.push_back(to_value(item));
  return value(std::move(out));
}

value from_command(const CommandRun& command) {
  return value(object{{"index", number(command.index)},
                      {"name", value(command.name)},
                      {"outcome", value(command.run ? "run" : "skipped")},
                      {"result", number(command.result)},
                      {"next", number(command.next)}});
}

value from_change(const record::Change& change) {
  return value(object{{"kind", value(change.kind)},
                      {"path", value(to_utf8(change.path))},
                      {"before", text_or_null(change.before)},
                      {"after", text_or_null(change.after)}});
}

value from_action(const record::Action& action) {
  return value(object{{"kind", value(action.kind)}, {"text", value(to_utf8(action.text))}});
}

value from_deletion(const record::Deletion& deletion) {
  return value(object{{"kind", value(deletion.kind)},
                      {"path", value(to_utf8(deletion.path))},
                      {"fate", value(to_text(fate_of(deletion)))},
                      {"code", number(deletion.code)}});
}

value from_log(const record::LogFile& log) {
  return value(object{{"path", value(to_utf8(log.path))}, {"fate", value(to_text(log.fate))}});
}

struct ProcessWords {
  const char* fate;
  const char* reason;
};

ProcessWords words_of(ProcessFate fate) {
  switch (fate) {
    case ProcessFate::closed:
      return {"closed", nullptr};
    case ProcessFate::terminated:
      return {"terminated", nullptr};
    case ProcessFate::not_ours:
      return {"left-alone", "another-file"};
    case ProcessFate::unreadable:
      return {"left-alone", "path-unreadable"};
    case ProcessFate::not_opened:
      return {"left-alone", "not-opened"};
    case ProcessFate::still_runs:
      return {"left-alone", "still-runs"};
  }
  return {"", nullptr};
}

value from_process(const record::SeenProcess& process) {
  const ProcessEnd end = end_of(process);
  const ProcessWords words = words_of(end.fate);
  return value(object{{"id", number(process.id)},
                      {"name", value(to_utf8(process.name))},
                      {"path", process.path.empty() ? value() : value(to_utf8(process.path))},
                      {"fate", value(words.fate)},
                      {"reason", words.reason == nullptr ? value() : value(words.reason)},
                      {"code", number(end.code)}});
}

value from_globals(const std::map<std::string, GlobalValue>& globals) {
  object out;
  for (const auto& [name, held] : globals) {
    if (const auto* integer = std::get_if<std::int32_t>(&held)) {
      out[name] = number(*integer);
    } else if (const auto* text = std::get_if<std::wstring>(&held)) {
      out[name] = value(to_utf8(*text));
    } else {
      out[name] = value();
    }
  }
  return value(std::move(out));
}

value from_stop(const std::optional<Stop>& stop) {
  if (!stop) return value();
  return value(
      object{{"index", number(stop->index)}, {"command", value(stop->command)}, {"reason", value(stop->reason)}});
}

}  // namespace

std::string to_json(const Outcome& outcome) {
  const value document(object{
      {"format", value("ky-result")},
      {"version", number(format_version)},
      {"returnCode", number(outcome.return_code)},
      {"endedEarly", outcome.ended_early.empty() ? value() : value(outcome.ended_early)},
      {"stopped", from_stop(outcome.stopped)},
      {"commands", list(outcome.commands, from_command)},
      {"globals", from_globals(outcome.globals)},
      {"environment", list(outcome.environment, [](const std::string& name) { return value(name); })},
      {"changes", list(outcome.changes, from_change)},
      {"actions", list(outcome.actions, from_action)},
      {"deletions", list(outcome.deletions, from_deletion)},
      {"logs", list(outcome.logs, from_log)},
      {"processes", list(outcome.processes, from_process)},
  });
  return document.serialize(true);
}

}  // namespace rehearsal
