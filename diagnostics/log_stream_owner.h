#pragma once

#include <string>
#include <utility>

#include "platform/ports/log_streams.h"
#include "platform/ports/system.h"

namespace diagnostics {

/// A stream of the log, closed at its end.
class LogStreamOwner {
 public:
  LogStreamOwner() = default;
  explicit LogStreamOwner(ports::LogStream stream) : stream_(stream) {}
  LogStreamOwner(LogStreamOwner&& other) noexcept : stream_(std::exchange(other.stream_, ports::LogStream::null)) {}
  LogStreamOwner& operator=(LogStreamOwner&& other) noexcept {
    std::swap(stream_, other.stream_);
    return *this;
  }
  ~LogStreamOwner() { close(); }

  [[nodiscard]] ports::LogStream get() const { return stream_; }
  [[nodiscard]] bool open() const { return stream_ != ports::LogStream::null; }
  void close() {
    if (open()) ports::system().log_streams.close(std::exchange(stream_, ports::LogStream::null));
  }

 private:
  ports::LogStream stream_ = ports::LogStream::null;
};

/// An empty path opens nothing.
[[nodiscard]] inline LogStreamOwner open_log(const std::wstring& path, ports::LogMode mode) {
  return LogStreamOwner(path.empty() ? ports::LogStream::null : ports::system().log_streams.open(path.c_str(), mode));
}

}  // namespace diagnostics
