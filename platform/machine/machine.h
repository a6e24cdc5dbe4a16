#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/clock.h"
#include "platform/machine/code_pages.h"
#include "platform/machine/com.h"
#include "platform/machine/crashes.h"
#include "platform/machine/desk_copies.h"
#include "platform/machine/driver_store.h"
#include "platform/machine/environment.h"
#include "platform/machine/errors.h"
#include "platform/machine/files.h"
#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/inspection.h"
#include "platform/machine/log_streams.h"
#include "platform/machine/modules.h"
#include "platform/machine/named_objects.h"
#include "platform/machine/processes.h"
#include "platform/machine/registry.h"
#include "platform/machine/resources.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/machine/signatures.h"
#include "platform/machine/state.h"
#include "platform/machine/task_scheduler.h"
#include "platform/machine/termination.h"
#include "platform/machine/threads.h"
#include "platform/machine/tokens.h"
#include "platform/machine/waits.h"
#include "platform/machine/winapi.h"
#include "platform/ports/system.h"

namespace ports {
class Engines;
}

namespace machine {

struct Options {
  Pace pace = Pace::serial;
  /// Steps of loops whose length a script decides.
  std::uint64_t max_steps = 1'000'000;
  /// Called before the process ends with exit code 1, on the thread that stops, with no lock held. Comes also when
  /// nothing on the machine can go on (`StopKind::deadlock`).
  StopHandler on_stop{};
  /// Real time without progress after which the process aborts.
  std::chrono::milliseconds patience = std::chrono::minutes(2);
  /// The folder of the desk that log files are written through to, record by record, under their real names.
  std::optional<std::string> log_folder{};
};

/// A machine with nothing but drive C:, the folders and the program of its environment, and the current user's key.
[[nodiscard]] State bare_state();

/// A simulated Windows, whole: its state and the ports on it. The thread that makes it is one of the machine's own
/// until it destroys it; others join with `Scheduler::Entered` or are started through `threads`. Several machines may
/// live side by side.
class Machine {
 public:
  explicit Machine(Options options = {});
  Machine(State state, Options options);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// The machine that a document describes. `file_name` is for messages alone. Throws `DocumentError`.
  [[nodiscard]] static std::unique_ptr<Machine> from_json(std::string_view text, const std::string& file_name,
                                                          Options options = {});
  /// The document of this machine as it stands; its clock goes on from here. Other processes go on running; what
  /// belongs to this one, like its open handles, is left out.
  [[nodiscard]] std::string to_json();

  /// The ports, with the engines of the build. They live as long as the machine and the engines.
  [[nodiscard]] ports::System system(ports::Engines& engines);

  /// A resource of the library that holds the commands.
  void add_resource(std::wstring_view type, std::uint16_t id, std::vector<std::uint8_t> bytes);
  /// An export of the program or of the library; see `Modules`.
  void add_procedure(ports::Module module, std::string name, ports::Procedure procedure);

  /// A copy of the state, with clock and counters as they stand now.
  [[nodiscard]] State state();
  /// Changes the state from outside, as one. Not from within a port or a scheduled action.
  void change(const std::function<void(State&)>& action);

  [[nodiscard]] ports::Errors& errors() { return errors_; }
  [[nodiscard]] Clock& clock() { return clock_; }
  [[nodiscard]] Threads& threads() { return threads_; }
  [[nodiscard]] Waits& waits() { return waits_; }
  [[nodiscard]] Files& files() { return files_; }
  [[nodiscard]] Registry& registry() { return registry_; }
  [[nodiscard]] Processes& processes() { return processes_; }
  [[nodiscard]] Com& com() { return com_; }
  [[nodiscard]] TaskScheduler& tasks() { return tasks_; }
  [[nodiscard]] DriverStore& drivers() { return drivers_; }
  [[nodiscard]] Tokens& tokens() { return tokens_; }
  [[nodiscard]] Signatures& signatures() { return signatures_; }
  [[nodiscard]] Inspection& inspection() { return inspection_; }
  [[nodiscard]] Modules& modules() { return modules_; }
  [[nodiscard]] Resources& resources() { return resources_; }
  [[nodiscard]] Environment& environment() { return environment_; }
  [[nodiscard]] Termination& termination() { return termination_; }
  [[nodiscard]] CodePages& text() { return text_; }
  [[nodiscard]] LogStreams& log_streams() { return log_streams_; }
  [[nodiscard]] Crashes& crashes() { return crashes_; }
  [[nodiscard]] Winapi& winapi() { return winapi_; }
  [[nodiscard]] Scheduler& scheduler() { return scheduler_; }
  [[nodiscard]] HandleTable& handles() { return handles_; }
  /// Empty, or why log files could not be written through to the desk.
  [[nodiscard]] std::string desk_failure() { return copies_.failure(); }

 private:
  World world_;
  DeskCopies copies_;  // open files use it when they go
  Errors errors_;
  HandleTable handles_;
  NamedObjects names_;
  Ids ids_;
  Termination termination_;
  Scheduler scheduler_;
  Clock clock_;
  Threads threads_;
  Waits waits_;
  Files files_;
  LogStreams log_streams_;
  Crashes crashes_;
  Registry registry_;
  Com com_;
  Processes processes_;
  TaskScheduler tasks_;
  DriverStore drivers_;
  Inspection inspection_;
  Tokens tokens_;
  Signatures signatures_;
  Modules modules_;
  Resources resources_;
  Environment environment_;
  CodePages text_;
  Winapi winapi_;
  std::optional<Scheduler::Entered> entered_;
};

}  // namespace machine
