#pragma once

#include <map>
#include <memory>
#include <thread>

#include "platform/machine/images.h"
#include "platform/machine/state.h"
#include "platform/ports/processes.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;
class Ids;
class ProcessTable;
class Scheduler;
class Termination;
struct RunningProcess;

/// Programs that are started on the machine: each runs for its time on the machine's clock, and what it does to the
/// machine it does at its end. A process that terminates itself stops the machine.
class Processes final : public ports::Processes {
 public:
  Processes(World& world, HandleTable& handles, Scheduler& scheduler, Ids& ids, ports::Errors& errors,
            Termination& termination);

  [[nodiscard]] bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
                            ports::CreatedProcess& out) override;
  [[nodiscard]] bool exit_code(ports::Handle process, std::uint32_t& out) override;
  bool terminate(ports::Handle process, std::uint32_t exit_code) override;
  [[nodiscard]] std::uint32_t current_id() override;
  [[nodiscard]] bool shell_execute(const ports::ShellRequest& request, ports::Handle& process) override;
  [[nodiscard]] ports::Result initialize_com() override;
  void uninitialize_com() override;
  [[nodiscard]] ports::Result find_desktop(ports::DesktopShell& out) override;
  void release_desktop(ports::DesktopShell desktop) override;
  [[nodiscard]] ports::Result execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file,
                                                 const wchar_t* arguments, const wchar_t* directory,
                                                 const wchar_t* operation) override;

  /// All of the machine's processes.
  [[nodiscard]] const std::shared_ptr<ProcessTable>& table() const { return table_; }

 private:
  bool fail(ports::ErrorCode error);
  [[nodiscard]] ports::ErrorCode find(const wchar_t* command_line, const wchar_t* directory, Image& image,
                                      std::wstring& folder) KY_REQUIRES(world_.mutex);
  /// Null where the shell needed no new process.
  [[nodiscard]] ports::ErrorCode shell_start(const ports::ShellRequest& request, bool by_shell,
                                             std::shared_ptr<RunningProcess>& process);
  [[nodiscard]] ports::Handle handle_of(std::shared_ptr<RunningProcess> held);

  World& world_;
  HandleTable& handles_;
  Ids& ids_;
  ports::Errors& errors_;
  Termination& termination_;
  const std::shared_ptr<ProcessTable> table_;
  ports::Mutex com_mutex_;
  std::map<std::thread::id, std::uint32_t> com_ KY_GUARDED_BY(com_mutex_);
};

}  // namespace machine
