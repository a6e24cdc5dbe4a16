#pragma once

#include <map>
#include <memory>

#include "platform/machine/desk_copies.h"
#include "platform/ports/log_streams.h"
#include "platform/ports/mutex.h"

namespace machine {

class Files;
class HandleTable;
struct LogStreamObject;

/// The log's files on the machine's drives.
class LogStreams final : public ports::LogStreams {
 public:
  LogStreams(World& world, Files& files, HandleTable& handles, DeskCopies& copies);
  ~LogStreams() override;

  [[nodiscard]] ports::LogStream open(const wchar_t* path, ports::LogMode mode) override;
  [[nodiscard]] std::uint64_t length(ports::LogStream stream) override;
  std::size_t write(ports::LogStream stream, std::span<const std::uint8_t> bytes) override;
  bool flush(ports::LogStream stream) override;
  [[nodiscard]] std::size_t read(ports::LogStream stream, std::span<std::uint8_t> into) override;
  bool skip(ports::LogStream stream, std::uint32_t bytes) override;
  void close(ports::LogStream stream) override;

 private:
  World& world_;
  Files& files_;
  HandleTable& handles_;
  DeskCopies& copies_;
  ports::Mutex mutex_;
  std::map<ports::LogStream, std::unique_ptr<LogStreamObject>> open_ KY_GUARDED_BY(mutex_);
};

}  // namespace machine
