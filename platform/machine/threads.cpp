#include "platform/machine/threads.h"

#include <utility>

#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

ports::Handle Threads::start(std::unique_ptr<ports::ThreadBody> body, std::uint32_t& id) {
  const std::uint32_t new_id = ids_.take();
  auto end = scheduler_.start(new_id, L"started by " + std::to_wstring(scheduler_.current()), std::move(body));
  if (end == nullptr) {
    errors_.set_last(ports::code::not_enough_memory);
    return ports::Handle::null;
  }
  id = new_id;
  return handles_.open(std::make_shared<Object>(ObjectKind::thread, std::move(end)));
}

std::uint32_t Threads::current_id() {
  return scheduler_.current();
}

void Threads::sleep(std::uint32_t milliseconds) {
  scheduler_.sleep(milliseconds);
}

}  // namespace machine
