#include "platform/machine/termination.h"

#include <cstdlib>

#include "platform/machine/crashes.h"

namespace machine {

void Termination::stop(const ports::StopReason& reason) {
  // Nothing may pass this door, an exception of the handler neither.
  try {
    if (crashes_ != nullptr) crashes_->fault(reason);
    if (handler_) handler_(reason);
  } catch (...) {
    std::_Exit(1);
  }
  std::_Exit(1);
}

void Termination::step() {
  if (steps_.fetch_add(1) + 1 > max_steps_) {
    stop({ports::StopKind::step_limit, L"the limit of " + std::to_wstring(max_steps_) + L" steps is reached"});
  }
}

}  // namespace machine
