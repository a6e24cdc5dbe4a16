#pragma once

#include "platform/ports/log_streams.h"
#include "platform/record/ledger.h"

namespace record {

/// Log streams whose files go into the ledger as the run's log.
class RecordingLogStreams final : public ports::LogStreams {
 public:
  RecordingLogStreams(const ports::System& inner, Ledger& ledger) : inner_(inner.log_streams), ledger_(ledger) {}

  ports::LogStream open(const wchar_t* path, ports::LogMode mode) override {
    const ports::LogStream stream = inner_.open(path, mode);
    if (stream != ports::LogStream::null && mode != ports::LogMode::read) ledger_.add_log(path, true);
    return stream;
  }
  std::uint64_t length(ports::LogStream stream) override { return inner_.length(stream); }
  std::size_t write(ports::LogStream stream, std::span<const std::uint8_t> bytes) override {
    return inner_.write(stream, bytes);
  }
  bool flush(ports::LogStream stream) override { return inner_.flush(stream); }
  std::size_t read(ports::LogStream stream, std::span<std::uint8_t> into) override { return inner_.read(stream, into); }
  bool skip(ports::LogStream stream, std::uint32_t bytes) override { return inner_.skip(stream, bytes); }
  void close(ports::LogStream stream) override { inner_.close(stream); }

 private:
  ports::LogStreams& inner_;
  Ledger& ledger_;
};

}  // namespace record
