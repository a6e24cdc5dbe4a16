#include "tests/attacks/fault_cases.h"

#include <algorithm>

namespace attacks {

std::string told(const FaultCase& fault) {
  return std::string(faults::contract(fault.operation).name) + (fault.for_good ? ", from call " : ", call ") +
         std::to_string(fault.call) + (fault.for_good ? " on" : "") + ", code " + std::to_string(fault.code);
}

std::vector<FaultCase> cases_of(const faults::Contract& contract, std::uint64_t calls, std::uint64_t most) {
  std::vector<FaultCase> cases;
  if (calls == 0) return cases;
  for (const ports::ErrorCode code : contract.codes) {
    cases.push_back({contract.operation, 1, false, code});
    cases.push_back({contract.operation, 1, true, code});
  }
  const std::uint64_t rest = calls - 1;
  const std::uint64_t tried = std::min(rest, most);
  const std::uint64_t for_good_step = std::max<std::uint64_t>(1, tried / 4);
  for (std::uint64_t at = 1; at <= tried; ++at) {
    const std::uint64_t call = 1 + rest * at / tried;
    const ports::ErrorCode code = contract.codes[at % contract.codes.size()];
    cases.push_back({contract.operation, call, false, code});
    if (at % for_good_step == 0) cases.push_back({contract.operation, call, true, code});
  }
  return cases;
}

}  // namespace attacks
