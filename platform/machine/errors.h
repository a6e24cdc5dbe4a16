#pragma once

#include <cstdint>

#include "platform/ports/system.h"

namespace machine {

/// A machine's last error, one for each real thread; 0 on a thread, and on a machine, where none was set yet. A thread
/// that goes to and fro between two machines finds 0 when it comes back.
class Errors final : public ports::Errors {
 public:
  Errors();
  [[nodiscard]] ports::ErrorCode last() override;
  void set_last(ports::ErrorCode code) override;
  [[nodiscard]] ports::ErrorCode of_status(ports::Status status) override;

 private:
  std::uint64_t serial_;  // an address may come again, a number does not
};

}  // namespace machine
