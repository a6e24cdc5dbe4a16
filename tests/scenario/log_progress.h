#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace scenario {

/// What a writing process has come to, in memory that two processes share.
struct LogProgress {
  struct Lane {
    std::atomic<std::uint32_t> thread;   // its id
    std::atomic<std::uint32_t> written;  // calls that have returned
  };
  std::array<Lane, 2> lanes;
  std::atomic<bool> began;
};

/// The shared memory of that name: whoever comes first makes it, with zeros.
class SharedLogProgress {
 public:
  explicit SharedLogProgress(const std::wstring& name)
      : mapping_(
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(LogProgress), name.c_str())),
        view_(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(LogProgress))) {}
  ~SharedLogProgress() {
    UnmapViewOfFile(view_);
    CloseHandle(mapping_);
  }
  SharedLogProgress(const SharedLogProgress&) = delete;
  SharedLogProgress& operator=(const SharedLogProgress&) = delete;

  [[nodiscard]] LogProgress& operator*() const { return *static_cast<LogProgress*>(view_); }

 private:
  HANDLE mapping_;
  void* view_;
};

/// The n-th message of a writer.
[[nodiscard]] inline std::wstring log_message(std::uint32_t n) {
  return std::to_wstring(n) + L" " + std::wstring(n * 37 % 900, L'x') + L"\n";
}

}  // namespace scenario
