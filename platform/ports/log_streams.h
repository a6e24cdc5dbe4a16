#pragma once

#include <cstdint>
#include <span>

#include "platform/ports/types.h"

namespace ports {

enum class LogStream : std::uintptr_t { null = 0 };

/// How a log file is opened; bytes pass unchanged in every mode.
enum class LogMode : std::uint8_t {
  append,  // "ab+": made where it is missing
  write,   // "wb": emptied or made
  read,    // "rb"
};

/// The buffered files of the log: the C runtime's streams, opened with _wfsopen and _SH_DENYNO, so that others may read
/// and write beside. One thread at a time for one stream's write and its flush; two threads may share a stream, their
/// writes then stand one after another in any order. On the machine the files lie on its drives, and what is flushed is
/// written through to the desk where the rehearsal asks for it.
class LogStreams {
 public:
  virtual ~LogStreams() = default;

  /// _wfsopen. Null on failure, with the runtime's errno unheeded.
  [[nodiscard]] virtual LogStream open(const wchar_t* path, LogMode mode) = 0;

  /// The file's length in bytes, without what is not flushed yet.
  [[nodiscard]] virtual std::uint64_t length(LogStream stream) = 0;

  /// fwrite: the number of bytes that were taken.
  virtual std::size_t write(LogStream stream, std::span<const std::uint8_t> bytes) = 0;

  /// fflush: what was written has left the process when it returns true.
  virtual bool flush(LogStream stream) = 0;

  /// fread: the number of bytes that came; fewer at the end or on failure.
  [[nodiscard]] virtual std::size_t read(LogStream stream, std::span<std::uint8_t> into) = 0;

  /// fseek from the current position.
  virtual bool skip(LogStream stream, std::uint32_t bytes) = 0;

  /// fclose. Of null it does nothing.
  virtual void close(LogStream stream) = 0;
};

}  // namespace ports
