#pragma once

#include <cstdint>
#include <memory>

#include "platform/faults/operations.h"
#include "platform/ports/system.h"

namespace faults {

/// A system in which chosen calls fail. A call that fails by plan does nothing inside; it gives the operation's failure
/// value and sets the last error, or gives the code where the operation answers with one. The inner system must outlive
/// this one. Counting is safe on any thread.
class FaultySystem {
 public:
  explicit FaultySystem(const ports::System& inner);
  ~FaultySystem();
  FaultySystem(const FaultySystem&) = delete;
  FaultySystem& operator=(const FaultySystem&) = delete;

  /// Call number `call` of `operation`, counted from 1, fails with `code`; `for_good` every later call too. One plan
  /// for each operation: a new one replaces the old.
  void fail(Operation operation, std::uint64_t call, bool for_good, ports::ErrorCode code);

  /// The operation's calls until now, failed ones included, and those that failed by plan.
  [[nodiscard]] std::uint64_t calls(Operation operation) const;
  [[nodiscard]] std::uint64_t failed(Operation operation) const;

  [[nodiscard]] const ports::System& system() const;

 private:
  struct Ports;
  std::unique_ptr<Ports> ports_;
};

}  // namespace faults
