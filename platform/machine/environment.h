#pragma once

#include "platform/machine/state.h"
#include "platform/ports/environment.h"

namespace ports {
class Errors;
}

namespace machine {

/// The facts about the machine's process.
class Environment final : public ports::Environment {
 public:
  Environment(World& world, ports::Errors& errors) : world_(world), errors_(errors) {}
  [[nodiscard]] std::wstring folder(ports::KnownFolder which) override;
  [[nodiscard]] std::wstring command_line() override;
  [[nodiscard]] std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override;

 private:
  World& world_;
  ports::Errors& errors_;
};

}  // namespace machine
