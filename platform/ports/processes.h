#pragma once

#include <cstdint>

#include "platform/ports/types.h"

namespace ports {

/// A process that `create` started. The caller closes both handles.
struct CreatedProcess {
  Handle process = Handle::null;
  Handle thread = Handle::null;
  std::uint32_t process_id = 0;
  std::uint32_t thread_id = 0;
};

namespace creation_flag {
inline constexpr std::uint32_t no_window = 0x08000000;
}

/// What ShellExecuteExW is asked; null strings are left out.
struct ShellRequest {
  const wchar_t* verb = nullptr;
  const wchar_t* file = nullptr;
  const wchar_t* arguments = nullptr;
  const wchar_t* directory = nullptr;
  bool show = true;
};

/// The view of the running desktop shell, as found by `find_desktop`.
enum class DesktopShell : std::uintptr_t { null = 0 };

/// Processes: launching and their end. A process handle becomes signalled when the process has ended; it is waited for
/// and closed through `Waits`. Every operation may be called on any thread; failure leaves its code in the last error.
class Processes {
 public:
  virtual ~Processes() = default;

  /// CreateProcessW with a null application name, no inheritance and the caller's environment. A null directory is the
  /// caller's. Fails with file_not_found, directory_name_invalid, bad_exe_format, access_denied, elevation_required.
  [[nodiscard]] virtual bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
                                    CreatedProcess& out) = 0;

  /// GetExitCodeProcess; 259 while it runs.
  [[nodiscard]] virtual bool exit_code(Handle process, std::uint32_t& out) = 0;

  /// TerminateProcess. Returns before the process is gone.
  virtual bool terminate(Handle process, std::uint32_t exit_code) = 0;

  /// GetCurrentProcessId.
  [[nodiscard]] virtual std::uint32_t current_id() = 0;

  /// ShellExecuteExW without an error box, keeping the process. `process` may be null on success, where the shell
  /// handed the request to a program that ran already. Fails with file_not_found, access_denied, cancelled (the user
  /// refused).
  [[nodiscard]] virtual bool shell_execute(const ShellRequest& request, Handle& process) = 0;

  /// The desktop's shell view (IShellWindows, IShellBrowser, IShellView, IShellDispatch2), to be given back with
  /// `release_desktop`. A negative result where no shell runs. Only on a thread that has COM initialised.
  [[nodiscard]] virtual Result find_desktop(DesktopShell& out) = 0;
  virtual void release_desktop(DesktopShell desktop) = 0;

  /// IShellDispatch2::ShellExecute, shown normally: the program runs under the shell's token, not under this process's.
  [[nodiscard]] virtual Result execute_on_desktop(DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                                  const wchar_t* directory, const wchar_t* operation) = 0;
};

}  // namespace ports
