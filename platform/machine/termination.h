#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include "platform/ports/termination.h"

namespace machine {

using StopHandler = std::function<void(const ports::StopReason&)>;

/// The door through which a rehearsal stops: the handler writes what is to be kept, then the process ends with exit
/// code 1, without unwinding anything.
class Termination final : public ports::Termination {
 public:
  Termination(std::uint64_t max_steps, StopHandler handler) : max_steps_(max_steps), handler_(std::move(handler)) {}

  [[noreturn]] void stop(const ports::StopReason& reason) override;
  void step() override;

  [[nodiscard]] std::uint64_t steps() const { return steps_.load(); }

 private:
  const std::uint64_t max_steps_;
  const StopHandler handler_;
  std::atomic<std::uint64_t> steps_{0};
};

}  // namespace machine
