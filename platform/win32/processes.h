#pragma once

#include "platform/ports/processes.h"

namespace win32 {

class Processes final : public ports::Processes {
 public:
  bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
              ports::CreatedProcess& out) override;
  bool exit_code(ports::Handle process, std::uint32_t& out) override;
  bool terminate(ports::Handle process, std::uint32_t exit_code) override;
  std::uint32_t current_id() override;
  bool shell_execute(const ports::ShellRequest& request, ports::Handle& process) override;
  ports::Result find_desktop(ports::DesktopShell& out) override;
  void release_desktop(ports::DesktopShell desktop) override;
  ports::Result execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                   const wchar_t* directory, const wchar_t* operation) override;
};

}  // namespace win32
