#pragma once

#include "platform/ports/log_streams.h"

namespace win32 {

/// The C runtime's streams.
class LogStreams final : public ports::LogStreams {
 public:
  ports::LogStream open(const wchar_t* path, ports::LogMode mode) override;
  std::uint64_t length(ports::LogStream stream) override;
  std::size_t write(ports::LogStream stream, std::span<const std::uint8_t> bytes) override;
  bool flush(ports::LogStream stream) override;
  std::size_t read(ports::LogStream stream, std::span<std::uint8_t> into) override;
  bool skip(ports::LogStream stream, std::uint32_t bytes) override;
  void close(ports::LogStream stream) override;
};

}  // namespace win32
