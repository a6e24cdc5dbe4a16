#include "installer/utils/base/process/command_line.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/status.h"
#include "platform/ports/system.h"

namespace base::process {

namespace {

// How a 64-bit process holds its parameters (PEB, RTL_USER_PROCESS_PARAMETERS, UNICODE_STRING), in bytes.
constexpr std::size_t environment_block_size = 712;
constexpr std::size_t parameters_place = 0x20;
constexpr std::size_t parameters_size = 128;
constexpr std::size_t length_place = 0x70;
constexpr std::size_t buffer_place = 0x78;

template <std::size_t width>
[[nodiscard]] std::uint64_t number_at(std::span<const std::uint8_t> bytes, std::size_t place) {
  std::uint64_t number = 0;
  for (std::size_t i = width; i-- > 0;) number = number << 8 | bytes[place + i];
  return number;
}

/// The text up to its terminator.
[[nodiscard]] std::wstring text_of(std::span<const std::uint8_t> block) {
  std::wstring text;
  for (std::size_t at = 0; at + 1 < block.size(); at += 2) {
    const auto unit = static_cast<wchar_t>(number_at<2>(block, at));
    if (unit == L'\0') break;
    text.push_back(unit);
  }
  return text;
}

[[nodiscard]] std::wstring read_command_line(ports::Handle process, std::uint64_t environment_block) {
  ports::ProcessInspection& inspection = ports::system().inspection;
  std::array<std::uint8_t, environment_block_size> block{};
  if (!inspection.read_memory(process, environment_block, block)) return {};
  std::array<std::uint8_t, parameters_size> parameters{};
  if (!inspection.read_memory(process, number_at<8>(block, parameters_place), parameters)) return {};
  const std::uint64_t length = number_at<2>(parameters, length_place);  // in bytes
  if (length == 0) return {};
  std::vector<std::uint8_t> text(length * 2);  // what is not read is the terminator
  if (!inspection.read_memory(process, number_at<8>(parameters, buffer_place), std::span(text).first(length))) {
    return {};
  }
  return text_of(text);
}

}  // namespace

ProcessBasicInfo QueryProcessBasicInfo(ports::Handle process) {
  ProcessBasicInfo info;
  if (process == ports::Handle::null) return info;
  std::uint32_t returned = 0;
  const ports::Status status = ports::system().inspection.basic_information(process, info.information, returned);
  info.valid = ports::status_ok(status) && returned == ports::process_basic_information_size &&
               info.information.environment_block != 0;
  return info;
}

std::wstring GetProcessCommandLine(std::uint32_t pid, std::error_code& error) {
  ports::ProcessInspection& inspection = ports::system().inspection;
  const winapi::scoped_handle process(
      inspection.open(ports::process_access::query_information | ports::process_access::vm_read, pid));
  if (!process.valid()) {
    error = winapi::last_error();
    return {};
  }
  // Asked on both sides of the query, and what is answered changes nothing: the 64-bit block is there for every target.
  // But the query sets no last error, so that its failure is told with what these calls left.
  bool wow64 = false;
  (void)inspection.is_wow64(process.get(), wow64);
  const ProcessBasicInfo info = QueryProcessBasicInfo(process.get());
  if (!info.valid) {
    error = winapi::last_error();
    return {};
  }
  (void)inspection.is_wow64(process.get(), wow64);
  return read_command_line(process.get(), info.information.environment_block);
}

}  // namespace base::process
