#pragma once

#include "platform/machine/state.h"
#include "platform/ports/environment.h"

namespace machine {

/// The facts about the machine's process.
class Environment final : public ports::Environment {
 public:
  explicit Environment(World& world) : world_(world) {}
  [[nodiscard]] std::wstring folder(ports::KnownFolder which) override;
  [[nodiscard]] std::wstring command_line() override;
  [[nodiscard]] std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override;

 private:
  World& world_;
};

}  // namespace machine
