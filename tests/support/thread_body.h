#pragma once

#include <functional>
#include <utility>

#include "platform/ports/threads.h"

namespace support {

/// A thread's body out of a function.
class Body final : public ports::ThreadBody {
 public:
  explicit Body(std::function<void()> work) : work_(std::move(work)) {}
  void run() override { work_(); }

 private:
  std::function<void()> work_;
};

}  // namespace support
