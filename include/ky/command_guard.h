#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

namespace ky {

/// Keeps a second thread out of a command's `Execute`. Only ever tried, never waited for; recursive for the thread that
/// holds it; may be destroyed while held, since some commands never leave it.
class CommandGuard {
 public:
  /// True when the calling thread now holds the guard once more.
  [[nodiscard]] bool TryEnter() noexcept {
    const std::thread::id self = std::this_thread::get_id();
    std::thread::id nobody;
    if (owner_.load(std::memory_order_relaxed) != self &&
        !owner_.compare_exchange_strong(nobody, self, std::memory_order_acquire)) {
      return false;
    }
    ++depth_;
    return true;
  }

  /// Undoes one successful `TryEnter` of the calling thread.
  void Leave() noexcept {
    if (--depth_ == 0) owner_.store(std::thread::id(), std::memory_order_release);
  }

  /// True while any thread holds the guard.
  [[nodiscard]] bool Held() const noexcept { return owner_.load(std::memory_order_acquire) != std::thread::id(); }

 private:
  std::atomic<std::thread::id> owner_{};
  std::uint32_t depth_ = 0;
};

/// Leaves a guard that was entered, at the end of a scope.
class GuardLeaver {
 public:
  explicit GuardLeaver(CommandGuard& entered) : guard_(entered) {}
  ~GuardLeaver() { guard_.Leave(); }
  GuardLeaver(const GuardLeaver&) = delete;
  GuardLeaver& operator=(const GuardLeaver&) = delete;

 private:
  CommandGuard& guard_;
};

}  // namespace ky
