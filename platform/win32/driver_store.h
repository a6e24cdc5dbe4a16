#pragma once

#include "platform/ports/driver_store.h"

namespace win32 {

class DriverStore final : public ports::DriverStore {
 public:
  bool inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) override;
};

}  // namespace win32
