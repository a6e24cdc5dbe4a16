#include "installer/desktop/commands/diagnostics/crashhandlercommand.h"

#include "diagnostics/crash_filter.h"
#include "installer/desktop/commands/base/trace.h"
#include "platform/ports/codes.h"
#include "platform/ports/crashes.h"
#include "platform/ports/system.h"

namespace ky {

namespace {
constexpr wchar_t log_name[] = L"CrashHandler";
}

std::uint32_t CCrashHandlerCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    Trace(L"%i: %s Error: Multiple threads attempting execution.\n", index, log_name);
    return ports::code::internal_error;
  }
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  ports::Crashes& crashes = ports::system().crashes;
  crashes.set_filter(diagnostics::dump_filter());
  crashes.set_invalid_parameter_handler();
  executed = true;
  return ports::code::success;
}

}  // namespace ky
