#include "installer/desktop/commands/tasks/removescheduledtaskcommand.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/desktop/commands/tasks/winscheduler.h"
#include "platform/ports/codes.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"RemoveScheduledTask";

}  // namespace

std::uint32_t CRemoveScheduledTaskCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  const std::uint32_t base_result = attributes.LoadBase(*this);
  const bool present = attributes.ReadCipheredAttribute(decrypter, L"name", name) == ports::code::success;
  return present ? ports::code::success : base_result;
}

std::uint32_t CRemoveScheduledTaskCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const GuardLeaver leaver(guard);
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  if (ExpandVariables(name, name) == ports::code::success) {
    Remove();
  } else {
    Trace(L"Could not expand name = %s\n", name.c_str());
  }
  return ports::code::success;
}

void CRemoveScheduledTaskCommand::Remove() const {
  WinScheduler scheduler;
  if (const std::uint32_t error = scheduler.Init()) {
    Trace(L"WinScheduler init failed. Error = %d\n", error);
    return;
  }
  if (const std::uint32_t error = scheduler.RemoveTask(name)) {
    Trace(L"Scheduled task '%s' was not removed. Error '%d' \n", name.c_str(), error);
  } else {
    Trace(L"Scheduled task '%s' was removed\n", name.c_str());
  }
}

}  // namespace ky
