#pragma once

#include "platform/machine/images.h"
#include "platform/machine/state.h"
#include "platform/ports/processes.h"

namespace ports {
class Errors;
}

namespace machine {

class Com;
class HandleTable;
class Ids;
class RunningProcess;
class Scheduler;

/// Programs that are started on the machine: each runs for its time on the machine's clock, and what it does to the
/// machine it does at its end.
class Processes final : public ports::Processes {
 public:
  Processes(World& world, HandleTable& handles, Scheduler& scheduler, Ids& ids, ports::Errors& errors, const Com& com);

  [[nodiscard]] bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
                            ports::CreatedProcess& out) override;
  [[nodiscard]] bool exit_code(ports::Handle process, std::uint32_t& out) override;
  bool terminate(ports::Handle process, std::uint32_t exit_code) override;
  [[nodiscard]] std::uint32_t current_id() override { return own_id_; }
  [[nodiscard]] bool shell_execute(const ports::ShellRequest& request, ports::Handle& process) override;
  [[nodiscard]] ports::Result find_desktop(ports::DesktopShell& out) override;
  void release_desktop(ports::DesktopShell desktop) override;
  [[nodiscard]] ports::Result execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file,
                                                 const wchar_t* arguments, const wchar_t* directory,
                                                 const wchar_t* operation) override;

 private:
  bool fail(ports::ErrorCode error);
  [[nodiscard]] ports::ErrorCode find(const wchar_t* command_line, const wchar_t* directory, Image& image,
                                      std::wstring& folder) KY_REQUIRES(world_.mutex);
  /// Books the run of an image; the caller has no lock.
  [[nodiscard]] std::shared_ptr<RunningProcess> start(const Image& image, std::wstring command_line,
                                                      std::wstring folder);
  [[nodiscard]] ports::ErrorCode shell_start(const ports::ShellRequest& request,
                                             std::shared_ptr<RunningProcess>& process);

  World& world_;
  HandleTable& handles_;
  Scheduler& scheduler_;
  Ids& ids_;
  ports::Errors& errors_;
  const Com& com_;
  const std::uint32_t own_id_;
};

}  // namespace machine
