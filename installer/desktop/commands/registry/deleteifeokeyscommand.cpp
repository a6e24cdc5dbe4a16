#include "installer/desktop/commands/registry/deleteifeokeyscommand.h"

#include <string>

#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/desktop/commands/registry/ifeo_list.h"
#include "platform/ports/codes.h"
#include "platform/ports/registry.h"
#include "platform/ports/system.h"

namespace ky {

std::uint32_t CDeleteIfeoKeysCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    Trace(L"%d DeleteIfeoKeys error: Multiple threads attempting execution.", index);
    return ports::code::internal_error;
  }
  const GuardLeaver leaver(guard);
  Trace(L"%d DeleteIfeoKeys: Begin execute.", index);
  const CString* const executables = Get(keys::String_IfeoExecutables);
  if (executables == nullptr) {
    Trace(L"%d DeleteIfeoKeys error: Could not get the executables to protect in IFEO.", index);
  }
  for (const std::wstring& name : IfeoExecutables(executables == nullptr ? L"" : executables->value)) {
    const std::wstring path = IfeoKey(name);
    const ports::ErrorCode error =
        ports::system().registry.remove_tree(ports::RegistryKey::local_machine, path.c_str());
    if (error == ports::code::success || error == ports::code::not_found) continue;
    Trace(L"%d DeleteIfeoKeys error: Could not delete key %s. Error %lu.", index, path.c_str(), error);
  }
  Trace(L"%d DeleteIfeoKeys: End execute.", index);
  return ports::code::success;
}

}  // namespace ky
