#pragma once

#include "platform/ports/tokens.h"

namespace win32 {

class Tokens final : public ports::Tokens {
 public:
  bool open_own(std::uint32_t access, ports::Handle& token) override;
  bool privilege_value(const wchar_t* name, ports::PrivilegeValue& out) override;
  bool adjust(ports::Handle token, const ports::PrivilegeState& state, ports::PrivilegeState* previous) override;
};

}  // namespace win32
