#include "installer/utils/base/process/desktop_launch.h"

#include <exception>

#include "platform/ports/com.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"

namespace base::process {

namespace {

class ComApartment {
 public:
  explicit ComApartment(ports::Com& com)
      : com_(com), entered_(ports::succeeded(com.initialize(ports::ComModel::apartment_threaded))) {}
  ~ComApartment() {
    if (entered_) com_.uninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  [[nodiscard]] bool entered() const { return entered_; }

 private:
  ports::Com& com_;
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
  const ComApartment apartment(ports::system().com);
  if (!apartment.entered()) return false;
  const FoundDesktop desktop(processes);
  if (desktop.get() == ports::DesktopShell::null) return false;
  return ports::succeeded(processes.execute_on_desktop(desktop.get(), file.c_str(), arguments.c_str(),
                                                       directory.c_str(), operation.c_str()));
} catch (const std::exception&) {
  return false;
}

}  // namespace base::process
