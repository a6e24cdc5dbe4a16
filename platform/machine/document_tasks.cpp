#include <string>
#include <utility>

#include "platform/machine/document_sections.h"

namespace machine {

namespace {

[[nodiscard]] std::wstring read_task_path(const JsonNode& node) {
  std::wstring path = node.text();
  if (path.size() < 2 || task_folder_path(path) != path) {
    node.fail("a task's path is wanted here, as \"\\Folder\\Name\"");
  }
  return path;
}

}  // namespace

void read_task_scheduler(const JsonNode& node, State& state) {
  node.only({"running", "tasks"});
  state.scheduled_tasks.running = node.flag("running", true);
  const auto tasks = node.find("tasks");
  for (std::size_t i = 0; tasks && i < tasks->size(); ++i) {
    const JsonNode row = tasks->at(i);
    row.only({"path", "protected"});
    const JsonNode path = row.member("path");
    if (!state.scheduled_tasks.tasks.emplace(read_task_path(path), TaskFacts{row.flag("protected")}).second) {
      path.fail("this task stands there twice");
    }
  }
}

picojson::value write_task_scheduler(const State& state) {
  picojson::array tasks;
  for (const auto& [path, facts] : state.scheduled_tasks.tasks) {
    picojson::object row;
    row["path"] = json_text(path);
    if (facts.protect) row["protected"] = picojson::value(true);
    tasks.emplace_back(row);
  }
  picojson::object out;
  out["running"] = picojson::value(state.scheduled_tasks.running);
  out["tasks"] = picojson::value(tasks);
  return picojson::value(out);
}

}  // namespace machine
