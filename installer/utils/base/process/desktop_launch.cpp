#include "installer/utils/base/process/desktop_launch.h"

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

}  // namespace

bool ShellExecuteAsDesktopUser(const std::wstring& file, const std::wstring& arguments, const std::wstring& directory,
                               const std::wstring& operation) {
  ports::Processes& processes = ports::system().processes;
  const ComApartment apartment(ports::system().com);
  if (!apartment.entered()) return false;
  ports::DesktopShell desktop = ports::DesktopShell::null;
  if (!ports::succeeded(processes.find_desktop(desktop)) || desktop == ports::DesktopShell::null) return false;
  const ports::Result result =
      processes.execute_on_desktop(desktop, file.c_str(), arguments.c_str(), directory.c_str(), operation.c_str());
  processes.release_desktop(desktop);
  return ports::succeeded(result);
}

}  // namespace base::process
