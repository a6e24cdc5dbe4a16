#include "host/commands/deleteregkeycommand.h"

#include "host/commands/attribute_reader.h"
#include "host/commands/missing_name.h"
#include "host/commands/registry_view.h"
#include "host/deletion/registry_removal.h"
#include "host/deletion/registry_target.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace host {

namespace {
constexpr wchar_t log_name[] = L"DeleteRegKey";
}

std::uint32_t CDeleteRegKeyCommand::LoadCiphered(ky::AttributeMap** map) {
  const AttributeReader reader(map);
  if (const std::uint32_t failure = reader.load_base(*this); failure != 0) return failure;
  if (!reader.text(L"base", base) || !reader.text(L"subkey", subkey)) return ports::code::invalid_parameter;
  recursive = reader.flag(L"recursive");
  return ports::code::success;
}

std::uint32_t CDeleteRegKeyCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return ky::InStandardShape(*this, guard, log_name, [this] { return Delete(); });
}

std::uint32_t CDeleteRegKeyCommand::Delete() {
  forget_request();
  std::wstring root;
  std::wstring key;
  if (ky::ExpandVariables(base, root) != ports::code::success ||
      ky::ExpandVariables(subkey, key) != ports::code::success) {
    ky::Trace(L"%i: %s Error: '%s\\%s' names an undefined variable.\n", index, log_name, base.c_str(), subkey.c_str());
    return ports::code::gen_failure;
  }
  RegistryTarget target = decide_registry_key(root, key);
  if (target.refusal == nullptr && misses_last_name(subkey, key)) target.refusal = missing_name;
  if (target.refusal != nullptr) {
    ky::Trace(L"%i: %s Error: '%s\\%s' is refused: %s.\n", index, log_name, root.c_str(), key.c_str(), target.refusal);
    return ports::code::invalid_parameter;
  }
  if (!target.each_user) keep_request("registry-key", full_name(root, target));
  const ports::ErrorCode result =
      RegistryRemoval(ports::system().registry, wanted_registry_view()).remove_key(target, recursive);
  ky::Trace(L"%i: %s '%s\\%s' result %u.\n", index, log_name, root.c_str(), key.c_str(), result);
  return result;
}

}  // namespace host
