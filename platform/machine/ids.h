#pragma once

#include <atomic>
#include <cstdint>

namespace machine {

/// Ids of processes and threads, which share one row of numbers: multiples of 4. Part of the machine's state, so that a
/// machine that was written and read back goes on where it stopped. Safe for any thread.
class Ids {
 public:
  explicit Ids(std::uint32_t next = 4) : next_(next) {}
  [[nodiscard]] std::uint32_t take() { return next_.fetch_add(4); }
  /// What `take` gives next.
  [[nodiscard]] std::uint32_t next() const { return next_.load(); }
  void set_next(std::uint32_t next) { next_.store(next); }

 private:
  std::atomic<std::uint32_t> next_;
};

}  // namespace machine
