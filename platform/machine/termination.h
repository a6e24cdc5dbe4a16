#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include "platform/ports/termination.h"

namespace machine {

class Crashes;

using StopHandler = std::function<void(const ports::StopReason&)>;

/// The door through which a rehearsal stops: a fault is shown to the crash filter, on the thread that stops; the
/// handler writes what is to be kept, then the process ends with exit code 1, without unwinding anything.
class Termination final : public ports::Termination {
 public:
  Termination(std::uint64_t max_steps, StopHandler handler) : max_steps_(max_steps), handler_(std::move(handler)) {}

  [[noreturn]] void stop(const ports::StopReason& reason) override;
  void step() override;

  /// Faults pass by these handlers before the stop handler. Called before anything may stop.
  void show_faults_to(Crashes& crashes) { crashes_ = &crashes; }

  [[nodiscard]] std::uint64_t steps() const { return steps_.load(); }

 private:
  const std::uint64_t max_steps_;
  const StopHandler handler_;
  Crashes* crashes_ = nullptr;
  std::atomic<std::uint64_t> steps_{0};
};

}  // namespace machine
