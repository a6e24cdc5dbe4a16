#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "diagnostics/log_stream_owner.h"

namespace diagnostics {

/// Writes what a sealed file begins with: the wrapped key's length and the wrapped key.
void write_key_header(ports::LogStream stream, std::span<const std::uint8_t> wrapped_key);

/// One file out of the threads' files. Nothing is lost on the way: a thread's file stays where it cannot be read or
/// where the merged file does not take all of it, and then nothing more is taken.
class LogMerge {
 public:
  /// Makes the merged file, with its key header where it is to be sealed.
  LogMerge(const std::wstring& path, bool sealed, std::span<const std::uint8_t> wrapped_key);

  /// Appends a thread's file, which nobody writes any more, and deletes it.
  void take(const std::wstring& path);

 private:
  [[nodiscard]] bool copy(ports::LogStream part);

  const bool sealed_;
  LogStreamOwner merged_;
  bool whole_;  // all that was written so far is there
};

}  // namespace diagnostics
