#pragma once

#include <cstdint>

#include "installer/desktop/commands/base/trace.h"
#include "ky/install_command.h"
#include "platform/ports/codes.h"

namespace ky {

/// The standard shape of `Execute`: the command's guard, the three trace lines with `name`, `executed` and the next
/// index around `work()`, whose 32-bit result becomes the command's. 1359 when another thread is inside. A command that
/// departs from it does not call it, and says so in its own code.
template <class Work>
[[nodiscard]] std::uint32_t InStandardShape(CInstallCommand& command, CommandGuard& guard, const wchar_t* name,
                                            Work&& work) {
  if (!guard.TryEnter()) {
    Trace(L"%i: %s Error: Multiple threads attempting execution.\n", command.index, name);
    return ports::code::internal_error;
  }
  const GuardLeaver leaver(guard);
  Trace(L"%i: %s Begin execute.\n", command.index, name);
  const std::uint32_t result = work();
  command.executed = true;
  const std::int32_t next = command.GetNextIndex();
  Trace(L"%i: %s End execute. Next command %i.\n", command.index, name, next);
  return result;
}

}  // namespace ky
