#pragma once

#include "platform/machine/state.h"
#include "platform/ports/tokens.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;

/// The token of the machine's process.
class Tokens final : public ports::Tokens {
 public:
  Tokens(World& world, HandleTable& handles, ports::Errors& errors)
      : world_(world), handles_(handles), errors_(errors) {}

  [[nodiscard]] bool open_own(std::uint32_t access, ports::Handle& token) override;
  [[nodiscard]] bool privilege_value(const wchar_t* name, ports::PrivilegeValue& out) override;
  [[nodiscard]] bool adjust(ports::Handle token, const ports::PrivilegeState& state,
                            ports::PrivilegeState* previous) override;

 private:
  [[nodiscard]] bool fail(ports::ErrorCode error);

  World& world_;
  HandleTable& handles_;
  ports::Errors& errors_;
};

}  // namespace machine
