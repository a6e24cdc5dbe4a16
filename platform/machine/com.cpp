#include "platform/machine/com.h"

#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

ports::Result Com::initialize(ports::ComModel model) {
  const ports::Lock lock(mutex_);
  Entrance& entrance = threads_[std::this_thread::get_id()];
  if (entrance.depth == 0) {
    entrance = {model, 1};
    return code::ok;
  }
  if (entrance.model != model) return code::changed_mode;
  ++entrance.depth;
  return code::nothing;
}

void Com::uninitialize() {
  const ports::Lock lock(mutex_);
  const auto found = threads_.find(std::this_thread::get_id());
  if (found != threads_.end() && --found->second.depth == 0) threads_.erase(found);
}

ports::Result Com::initialize_security(std::uint32_t /*authentication_level*/, std::uint32_t /*impersonation_level*/) {
  const ports::Lock lock(mutex_);
  if (threads_.count(std::this_thread::get_id()) == 0) return code::not_initialized;
  if (secured_) return code::security_too_late;
  secured_ = true;
  return code::ok;
}

bool Com::initialized() const {
  const ports::Lock lock(mutex_);
  return threads_.count(std::this_thread::get_id()) != 0;
}

}  // namespace machine
