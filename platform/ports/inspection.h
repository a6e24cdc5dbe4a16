#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/ports/status.h"
#include "platform/ports/types.h"

namespace ports {

/// Rights asked for by `ProcessInspection::open`.
namespace process_access {
inline constexpr std::uint32_t terminate = 0x1;
inline constexpr std::uint32_t vm_read = 0x10;
inline constexpr std::uint32_t query_information = 0x400;
inline constexpr std::uint32_t query_limited_information = 0x1000;
inline constexpr std::uint32_t synchronize = 0x100000;
}  // namespace process_access

/// One row of a snapshot: PROCESSENTRY32W as far as it is looked at.
struct ProcessRow {
  std::wstring name;  // of the executable, without folder
  std::uint32_t id = 0;
  std::uint32_t parent_id = 0;
};

/// PROCESS_BASIC_INFORMATION of a 64-bit system, in its order.
struct ProcessBasicInformation {
  std::int32_t exit_status = 0;
  std::uint64_t environment_block = 0;  // the PEB's address in the process
  std::uint64_t affinity = 0;
  std::int32_t base_priority = 0;
  std::uint64_t id = 0;
  std::uint64_t parent_id = 0;
};
inline constexpr std::uint32_t process_basic_information_size = 48;  // bytes, as the system counts

/// What other processes are and hold. Every handle that is opened here is closed with `Waits::close`. Any thread;
/// failure leaves its code in the last error where nothing else is told.
class ProcessInspection {
 public:
  virtual ~ProcessInspection() = default;

  /// CreateToolhelp32Snapshot of the processes. `invalid` on failure: access_denied, not_enough_memory.
  [[nodiscard]] virtual Handle snapshot() = 0;
  /// Process32FirstW and Process32NextW. False at the end, with no_more_files; also invalid_handle.
  [[nodiscard]] virtual bool first(Handle snapshot, ProcessRow& row) = 0;
  [[nodiscard]] virtual bool next(Handle snapshot, ProcessRow& row) = 0;

  /// OpenProcess without inheritance. Null on failure: invalid_parameter (no such process, or the idle one, 0),
  /// access_denied.
  [[nodiscard]] virtual Handle open(std::uint32_t access, std::uint32_t id) = 0;
  /// GetCurrentProcess: needs no closing.
  [[nodiscard]] virtual Handle current() = 0;

  /// IsWow64Process: true in `out` for a 32-bit process on a 64-bit system. Needs a right to query.
  [[nodiscard]] virtual bool is_wow64(Handle process, bool& out) = 0;

  /// K32GetModuleFileNameExW of the process's own image, terminated: the length without the terminator, at most
  /// `into.size()` less 1; 0 is failure: access_denied (the handle lacks query_information or vm_read, or the process
  /// has ended), invalid_handle.
  [[nodiscard]] virtual std::uint32_t image_path(Handle process, std::span<wchar_t> into) = 0;
  /// K32GetProcessImageFileNameW: the same as a device path, for which query_limited_information is enough; also
  /// insufficient_buffer.
  [[nodiscard]] virtual std::uint32_t image_device_path(Handle process, std::span<wchar_t> into) = 0;

  /// NtQueryInformationProcess, class 0, with room for `process_basic_information_size` bytes; `returned` is how many
  /// came. The call is undocumented and looked up in ntdll by name each time: entry_point_not_found where it is not
  /// there. Else invalid_handle, access_denied. Leaves the last error alone.
  [[nodiscard]] virtual Status basic_information(Handle process, ProcessBasicInformation& out,
                                                 std::uint32_t& returned) = 0;

  /// ReadProcessMemory: the whole of `into`, or false with partial_copy, access_denied or invalid_handle.
  [[nodiscard]] virtual bool read_memory(Handle process, std::uint64_t address, std::span<std::uint8_t> into) = 0;
};

}  // namespace ports
