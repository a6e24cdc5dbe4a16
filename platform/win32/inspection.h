#pragma once

#include "platform/ports/inspection.h"

namespace win32 {

class ProcessInspection final : public ports::ProcessInspection {
 public:
  ports::Handle snapshot() override;
  bool first(ports::Handle snapshot, ports::ProcessRow& row) override;
  bool next(ports::Handle snapshot, ports::ProcessRow& row) override;
  ports::Handle open(std::uint32_t access, std::uint32_t id) override;
  ports::Handle current() override;
  bool is_wow64(ports::Handle process, bool& out) override;
  std::uint32_t image_path(ports::Handle process, std::span<wchar_t> into) override;
  std::uint32_t image_device_path(ports::Handle process, std::span<wchar_t> into) override;
  ports::Status basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                  std::uint32_t& returned) override;
  bool read_memory(ports::Handle process, std::uint64_t address, std::span<std::uint8_t> into) override;
};

}  // namespace win32
