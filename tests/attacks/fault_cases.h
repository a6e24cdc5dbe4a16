#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/faults/operations.h"

namespace attacks {

/// One planned fault.
struct FaultCase {
  faults::Operation operation;
  std::uint64_t call;
  bool for_good;
  ports::ErrorCode code;
};

/// "files.open, call 3, error 5", "..., from call 3 on, ...".
[[nodiscard]] std::string told(const FaultCase& fault);

/// What a sweep tries of an operation that is called `calls` times. The first call fails with every code, once and for
/// good. Of all calls at most `most`, evenly spread and the last among them, fail once, with the codes by turns; a few
/// of them also for good.
[[nodiscard]] std::vector<FaultCase> cases_of(const faults::Contract& contract, std::uint64_t calls,
                                              std::uint64_t most);

}  // namespace attacks
