#include "platform/machine/errors.h"

#include <atomic>

#include "platform/ports/status_codes.h"

namespace machine {

namespace {
constinit std::atomic<std::uint64_t> last_serial = 0;
thread_local std::uint64_t slot_owner = 0;
thread_local ports::ErrorCode slot_code = 0;
}  // namespace

Errors::Errors() : serial_(++last_serial) {}

ports::ErrorCode Errors::last() {
  return slot_owner == serial_ ? slot_code : 0;
}

void Errors::set_last(ports::ErrorCode code) {
  slot_owner = serial_;
  slot_code = code;
}

ports::ErrorCode Errors::of_status(ports::Status status) {
  return ports::code_of_status(status);
}

}  // namespace machine
