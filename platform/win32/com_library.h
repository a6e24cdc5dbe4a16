#pragma once

#include "platform/ports/com.h"

namespace win32 {

class Com final : public ports::Com {
 public:
  ports::Result initialize(ports::ComModel model) override;
  void uninitialize() override;
  ports::Result initialize_security(std::uint32_t authentication_level, std::uint32_t impersonation_level) override;
};

}  // namespace win32
