#include "installer/utils/base/process/desktop_launch.h"

#include <exception>

#include "platform/ports/processes.h"
#include "platform/ports/system.h"

namespace base::process {

namespace {

class ComApartment {
 public:
  explicit ComApartment(ports::Processes& processes)
      : processes_(processes), entered_(ports::succeeded(processes.initialize_com())) {}
  ~ComApartment() {
    if (entered_) processes_.uninitialize_com();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  [[nodiscard]] bool entered() const { return entered_; }

 private:
  ports::Processes& processes_;
  bool entered_;
};

/// Null where no shell runs.
class FoundDesktop {
 public:
  explicit FoundDesktop(ports::Processes& processes) : processes_(processes) {
    if (!ports::succeeded(processes.find_desktop(desktop_))) desktop_ = ports::DesktopShell::null;
  }
  ~FoundDesktop() {
    if (desktop_ != ports::DesktopShell::null) processes_.release_desktop(desktop_);
  }
  FoundDesktop(const FoundDesktop&) = delete;
  FoundDesktop& operator=(const FoundDesktop&) = delete;
  [[nodiscard]] ports::DesktopShell get() const { return desktop_; }

 private:
  ports::Processes& processes_;
  ports::DesktopShell desktop_ = ports::DesktopShell::null;
};

}  // namespace

bool ShellExecuteAsDesktopUser(const std::wstring& file, const std::wstring& arguments, const std::wstring& directory,
                               const std::wstring& operation) try {
  ports::Processes& processes = ports::system().processes;
  const ComApartment apartment(processes);
  if (!apartment.entered()) return false;
  const FoundDesktop desktop(processes);
  if (desktop.get() == ports::DesktopShell::null) return false;
  return ports::succeeded(processes.execute_on_desktop(desktop.get(), file.c_str(), arguments.c_str(),
                                                       directory.c_str(), operation.c_str()));
} catch (const std::exception&) {
  return false;
}

}  // namespace base::process
