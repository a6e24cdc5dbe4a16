#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/faults/operations.h"
#include "platform/ports/mutex.h"

namespace faults {

#define KY_FAULT_COUNT(identifier, ...) +1
inline constexpr std::size_t operation_count = std::size_t{0} KY_FAULT_OPERATIONS(KY_FAULT_COUNT);
#undef KY_FAULT_COUNT

/// Counts the calls of each operation and says which of them fail. Any thread.
class Gate {
 public:
  /// Call number `call` of `operation`, from 1, fails with `code`; `for_good` every call behind it too. Replaces what
  /// was planned for the operation.
  void fail(Operation operation, std::uint64_t call, bool for_good, ports::ErrorCode code);

  /// Counts one call: the code it is to fail with, or nothing where it goes through.
  [[nodiscard]] std::optional<ports::ErrorCode> pass(Operation operation);

  [[nodiscard]] std::uint64_t calls(Operation operation) const;
  /// How many of them failed by plan.
  [[nodiscard]] std::uint64_t failed(Operation operation) const;

 private:
  struct Lane {
    std::uint64_t calls = 0;
    std::uint64_t failed = 0;
    std::uint64_t planned = 0;  // 0 is no plan
    bool for_good = false;
    ports::ErrorCode code = 0;
  };

  mutable ports::Mutex mutex_;
  std::array<Lane, operation_count> lanes_ KY_GUARDED_BY(mutex_){};
};

}  // namespace faults
