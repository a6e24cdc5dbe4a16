#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/ports/codes.h"
#include "platform/ports/inspection.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace support {

/// Processes as a test wants them, also in ways in which no machine has them. Its handles are events of the bound
/// system, so that those left open show.
class FakeInspection final : public ports::ProcessInspection {
 public:
  using Handle = ports::Handle;
  struct Process {
    std::wstring image;
    std::wstring device_image;
    bool wow64 = false;
    ports::Status status = ports::status::success;
    ports::ProcessBasicInformation basic{};
    std::uint32_t returned = ports::process_basic_information_size;
    std::map<std::uint64_t, std::vector<std::uint8_t>> memory{};  // pieces by address, each read whole
  };

  std::vector<ports::ProcessRow> rows;
  std::map<std::uint32_t, Process> processes;
  bool caller_is_wow64 = false;

  Handle snapshot() override { return ports::system().waits.create_event(true, true, nullptr); }
  bool first(Handle, ports::ProcessRow& row) override { return give(0, row); }
  bool next(Handle, ports::ProcessRow& row) override { return give(at_ + 1, row); }
  Handle open(std::uint32_t access, std::uint32_t id) override {
    if (!processes.contains(id)) {
      ports::system().errors.set_last(ports::code::invalid_parameter);
      return Handle::null;
    }
    const Handle made = snapshot();
    opened_[made] = {id, access};
    return made;
  }
  Handle current() override { return Handle::invalid; }
  bool is_wow64(Handle process, bool& out) override {
    out = process == current() ? caller_is_wow64 : of(process).wow64;
    return true;
  }
  std::uint32_t image_path(Handle process, std::span<wchar_t> into) override {
    if ((opened_.at(process).second & ports::process_access::vm_read) == 0) return 0;
    return copy(of(process).image, into);
  }
  std::uint32_t image_device_path(Handle process, std::span<wchar_t> into) override {
    return copy(of(process).device_image, into);
  }
  ports::Status basic_information(Handle process, ports::ProcessBasicInformation& out,
                                  std::uint32_t& returned) override {
    out = of(process).basic;
    returned = of(process).returned;
    return of(process).status;
  }
  bool read_memory(Handle process, std::uint64_t address, std::span<std::uint8_t> into) override {
    const auto piece = of(process).memory.find(address);
    if (piece == of(process).memory.end() || piece->second.size() != into.size()) {
      ports::system().errors.set_last(ports::code::partial_copy);
      return false;
    }
    std::copy(piece->second.begin(), piece->second.end(), into.begin());
    return true;
  }

 private:
  bool give(std::size_t place, ports::ProcessRow& row) {
    at_ = place;
    if (at_ < rows.size()) row = rows[at_];
    return at_ < rows.size();
  }
  const Process& of(Handle process) const { return processes.at(opened_.at(process).first); }
  static std::uint32_t copy(const std::wstring& text, std::span<wchar_t> into) {
    const std::size_t length = std::min(text.size(), into.size() - 1);
    std::copy_n(text.begin(), length, into.begin());
    into[length] = L'\0';
    return static_cast<std::uint32_t>(length);
  }

  std::size_t at_ = 0;
  std::map<Handle, std::pair<std::uint32_t, std::uint32_t>> opened_;  // id and rights
};

}  // namespace support
