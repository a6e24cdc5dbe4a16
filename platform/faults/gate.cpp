#include "platform/faults/gate.h"

namespace faults {

namespace {
std::size_t position(Operation operation) {
  return static_cast<std::size_t>(operation);
}
}  // namespace

void Gate::fail(Operation operation, std::uint64_t call, bool for_good, ports::ErrorCode code) {
  const ports::Lock lock(mutex_);
  Lane& lane = lanes_[position(operation)];
  lane.planned = call;
  lane.for_good = for_good;
  lane.code = code;
}

std::optional<ports::ErrorCode> Gate::pass(Operation operation) {
  const ports::Lock lock(mutex_);
  Lane& lane = lanes_[position(operation)];
  ++lane.calls;
  const bool fails = lane.planned != 0 && (lane.calls == lane.planned || (lane.for_good && lane.calls > lane.planned));
  if (!fails) return std::nullopt;
  ++lane.failed;
  return lane.code;
}

std::uint64_t Gate::calls(Operation operation) const {
  const ports::Lock lock(mutex_);
  return lanes_[position(operation)].calls;
}

std::uint64_t Gate::failed(Operation operation) const {
  const ports::Lock lock(mutex_);
  return lanes_[position(operation)].failed;
}

}  // namespace faults
