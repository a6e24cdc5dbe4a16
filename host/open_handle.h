#pragma once

#include <utility>

#include "platform/ports/threads.h"
#include "platform/ports/types.h"

namespace host {

/// Holds a handle of the system and closes it.
class OpenHandle {
 public:
  OpenHandle(ports::Waits& waits, ports::Handle handle) : waits_(&waits), handle_(handle) {}
  ~OpenHandle() {
    if (good()) (void)waits_->close(handle_);
  }
  OpenHandle(OpenHandle&& other) noexcept
      : waits_(other.waits_), handle_(std::exchange(other.handle_, ports::Handle::invalid)) {}
  OpenHandle& operator=(OpenHandle&&) = delete;

  [[nodiscard]] bool good() const { return handle_ != ports::Handle::invalid; }
  [[nodiscard]] ports::Handle get() const { return handle_; }

 private:
  ports::Waits* waits_;
  ports::Handle handle_;
};

}  // namespace host
