#pragma once

#include <utility>

#include "platform/ports/system.h"
#include "platform/ports/threads.h"
#include "platform/ports/types.h"

namespace winapi {

/// Holds a handle of the bound system and closes it, unless it is null or invalid.
class scoped_handle {
 public:
  explicit scoped_handle(ports::Handle handle) noexcept : handle_(handle) {}
  ~scoped_handle() {
    if (valid()) (void)ports::system().waits.close(handle_);
  }
  scoped_handle(scoped_handle&& other) noexcept : handle_(std::exchange(other.handle_, ports::Handle::null)) {}
  scoped_handle& operator=(scoped_handle&&) = delete;

  /// Which of the two means failure depends on the call that gave it; neither is ever closed.
  [[nodiscard]] bool valid() const noexcept {
    return handle_ != ports::Handle::null && handle_ != ports::Handle::invalid;
  }
  [[nodiscard]] ports::Handle get() const noexcept { return handle_; }
  /// Gives the handle up: the caller closes it, or leaves it open.
  [[nodiscard]] ports::Handle release() noexcept { return std::exchange(handle_, ports::Handle::null); }

 private:
  ports::Handle handle_;
};

}  // namespace winapi
