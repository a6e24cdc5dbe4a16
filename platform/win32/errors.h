#pragma once

#include "platform/ports/system.h"

namespace win32 {

class Errors final : public ports::Errors {
 public:
  ports::ErrorCode last() override;
  void set_last(ports::ErrorCode code) override;
  ports::ErrorCode of_status(ports::Status status) override;
};

}  // namespace win32
