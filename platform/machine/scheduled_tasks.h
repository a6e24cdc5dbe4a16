#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/machine/names.h"

namespace machine {

/// A task of the task scheduler.
struct TaskFacts {
  bool protect = false;  // it cannot be deleted
  friend bool operator==(const TaskFacts&, const TaskFacts&) = default;
};

/// The task scheduler's tasks, by full path as they were registered: "\Folder\Name". A folder is there as long as a
/// task is in it.
struct ScheduledTasks {
  bool running = true;  // the service
  std::map<std::wstring, TaskFacts, NameLess> tasks;
};

/// The path without a closing backslash, with one in front: "" is the root folder's.
[[nodiscard]] std::wstring task_folder_path(std::wstring_view path);
[[nodiscard]] bool has_task_folder(const ScheduledTasks& tasks, std::wstring_view folder);

}  // namespace machine
