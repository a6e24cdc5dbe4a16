#pragma once

#include "platform/ports/environment.h"

namespace win32 {

class Environment final : public ports::Environment {
 public:
  std::wstring folder(ports::KnownFolder which) override;
  std::wstring command_line() override;
  std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override;
};

}  // namespace win32
