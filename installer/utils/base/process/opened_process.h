#pragma once

#include <cstdint>
#include <utility>

#include "platform/ports/inspection.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"
#include "platform/ports/types.h"

namespace base::process {

/// A process opened with `ports::process_access` rights, and closed with the scope; null where it could not be opened,
/// with the cause in the last error.
class OpenedProcess {
 public:
  OpenedProcess(std::uint32_t access, std::uint32_t pid) : handle_(ports::system().inspection.open(access, pid)) {}
  ~OpenedProcess() {
    if (handle_ != ports::Handle::null) static_cast<void>(ports::system().waits.close(handle_));
  }
  OpenedProcess(OpenedProcess&& other) noexcept : handle_(other.release()) {}
  OpenedProcess& operator=(OpenedProcess&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  [[nodiscard]] ports::Handle get() const { return handle_; }
  [[nodiscard]] explicit operator bool() const { return handle_ != ports::Handle::null; }
  /// Gives the handle to the caller, who closes it or leaves it open.
  [[nodiscard]] ports::Handle release() { return std::exchange(handle_, ports::Handle::null); }

 private:
  ports::Handle handle_;
};

}  // namespace base::process
