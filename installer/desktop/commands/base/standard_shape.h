#pragma once

#include <cstdint>

#include "installer/desktop/commands/base/trace.h"
#include "ky/install_command.h"
#include "platform/ports/codes.h"

namespace ky {

/// Takes the command's guard; where another thread holds it, says so in the log.
[[nodiscard]] inline bool EnterGuard(const CInstallCommand& command, CommandGuard& guard, const wchar_t* name) {
  if (guard.TryEnter()) return true;
  Trace(L"%i: %s Error: Multiple threads attempting execution.\n", command.index, name);
  return false;
}

/// `executed`, the next index and the last trace line.
inline void EndExecute(CInstallCommand& command, const wchar_t* name) {
  command.executed = true;
  const std::int32_t next = command.GetNextIndex();
  Trace(L"%i: %s End execute. Next command %i.\n", command.index, name, next);
}

/// The end of the standard shape for commands that owe it also when an exception leaves them: ends the run and leaves
/// the entered guard with the scope. A log that throws at the end line ends the process: the scope may be left by an
/// exception already.
class StandardEnd {
 public:
  StandardEnd(CInstallCommand& command, CommandGuard& entered, const wchar_t* name)
      : leaver_(entered), command_(command), name_(name) {}
  ~StandardEnd() { EndExecute(command_, name_); }
  StandardEnd(const StandardEnd&) = delete;
  StandardEnd& operator=(const StandardEnd&) = delete;

 private:
  const GuardLeaver leaver_;
  CInstallCommand& command_;
  const wchar_t* const name_;
};

/// The standard shape of `Execute`: the command's guard, the three trace lines with `name`, `executed` and the next
/// index around `work()`, whose 32-bit result becomes the command's. 1359 when another thread is inside. A command that
/// departs from it does not call it, and says so in its own code.
template <class Work>
[[nodiscard]] std::uint32_t InStandardShape(CInstallCommand& command, CommandGuard& guard, const wchar_t* name,
                                            Work&& work) {
  if (!EnterGuard(command, guard, name)) return ports::code::internal_error;
  const GuardLeaver leaver(guard);
  Trace(L"%i: %s Begin execute.\n", command.index, name);
  const std::uint32_t result = work();
  EndExecute(command, name);
  return result;
}

}  // namespace ky
