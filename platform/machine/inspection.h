#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/machine/state.h"
#include "platform/ports/inspection.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;
class ProcessTable;
class Processes;
struct RunningProcess;

/// What the machine's processes are and hold.
class Inspection final : public ports::ProcessInspection {
 public:
  Inspection(World& world, HandleTable& handles, ports::Errors& errors, Processes& processes);

  [[nodiscard]] ports::Handle snapshot() override;
  [[nodiscard]] bool first(ports::Handle snapshot, ports::ProcessRow& row) override;
  [[nodiscard]] bool next(ports::Handle snapshot, ports::ProcessRow& row) override;
  [[nodiscard]] ports::Handle open(std::uint32_t access, std::uint32_t id) override;
  [[nodiscard]] ports::Handle current() override { return ports::Handle::invalid; }
  [[nodiscard]] bool is_wow64(ports::Handle process, bool& out) override;
  [[nodiscard]] std::uint32_t image_path(ports::Handle process, std::span<wchar_t> into) override;
  [[nodiscard]] std::uint32_t image_device_path(ports::Handle process, std::span<wchar_t> into) override;
  [[nodiscard]] ports::Status basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                                std::uint32_t& returned) override;
  [[nodiscard]] bool read_memory(ports::Handle process, std::uint64_t address, std::span<std::uint8_t> into) override;

 private:
  /// A process as a handle gives access to it.
  struct Opened {
    std::shared_ptr<RunningProcess> process;
    std::uint32_t access = 0;
    std::shared_ptr<const void> handle;  // keeps the process held
  };

  bool fail(ports::ErrorCode error);
  [[nodiscard]] Opened find(ports::Handle handle);

  World& world_;
  HandleTable& handles_;
  ports::Errors& errors_;
  const std::shared_ptr<ProcessTable>& table_;
};

}  // namespace machine
