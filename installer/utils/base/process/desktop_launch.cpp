#include "installer/utils/base/process/desktop_launch.h"

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

}  // namespace

bool ShellExecuteAsDesktopUser(const std::wstring& file, const std::wstring& arguments, const std::wstring& directory,
                               const std::wstring& operation) {
  ports::Processes& processes = ports::system().processes;
  const ComApartment apartment(processes);
  if (!apartment.entered()) return false;
  ports::DesktopShell desktop = ports::DesktopShell::null;
  if (!ports::succeeded(processes.find_desktop(desktop)) || desktop == ports::DesktopShell::null) return false;
  const ports::Result result =
      processes.execute_on_desktop(desktop, file.c_str(), arguments.c_str(), directory.c_str(), operation.c_str());
  processes.release_desktop(desktop);
  return ports::succeeded(result);
}

}  // namespace base::process
