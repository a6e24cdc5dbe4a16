#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/types.h"

namespace base::process {

/// One row of a snapshot.
struct ProcessEntry {
  std::wstring name;  // of the executable, without folder
  std::uint32_t pid = 0;
  std::uint32_t parentPid = 0;

  /// Names are compared exactly, as code units.
  friend bool operator==(const ProcessEntry&, const ProcessEntry&) = default;
};

/// A walk over the processes that ran when it was made (CreateToolhelp32Snapshot). At the end, and where there is none
/// at all, the current row is the empty entry: no name, both ids 0. One thread at a time.
class ProcessSnapshot {
 public:
  /// Throws `std::system_error` with the Windows code and "CreateToolhelp32Snapshot has failed!".
  ProcessSnapshot();
  ~ProcessSnapshot();
  ProcessSnapshot(const ProcessSnapshot&) = delete;
  ProcessSnapshot& operator=(const ProcessSnapshot&) = delete;

  /// Moves to the first row. A failure leaves the current row as it is.
  void begin();
  /// Moves to the next row; any failure is the end.
  void next();

  [[nodiscard]] const ProcessEntry& current() const { return current_; }
  [[nodiscard]] bool at_end() const { return current_ == ProcessEntry{}; }

 private:
  ports::Handle handle_;
  ProcessEntry current_;
};

/// The id of the first process whose name begins with `name`, as exact code units; 0 without one, for null, and on any
/// failure. The idle process has id 0, which therefore reads as not running.
[[nodiscard]] std::uint32_t FindProcessIdByPrefix(const wchar_t* name) noexcept;

}  // namespace base::process
