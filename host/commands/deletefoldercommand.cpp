#include "host/commands/deletefoldercommand.h"

#include <vector>

#include "host/commands/attribute_reader.h"
#include "host/commands/missing_name.h"
#include "host/deletion/folder_target.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "platform/ports/codes.h"

namespace host {

namespace {
constexpr wchar_t log_name[] = L"DeleteFolder";
}

std::uint32_t CDeleteFolderCommand::LoadCiphered(ky::AttributeMap** map) {
  const AttributeReader reader(map);
  if (const std::uint32_t failure = reader.load_base(*this); failure != 0) return failure;
  if (!reader.text(L"path", path)) return ports::code::invalid_parameter;
  options.recursive = reader.flag(L"recursive");
  options.delete_after_reboot = reader.flag(L"deleteAfterReboot");
  options.move_to_temp = reader.flag(L"moveToTemp");
  return ports::code::success;
}

std::uint32_t CDeleteFolderCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return ky::InStandardShape(*this, guard, log_name, [this] { return Delete(); });
}

std::uint32_t CDeleteFolderCommand::Delete() {
  forget_request();
  std::wstring expanded;
  if (ky::ExpandVariables(path, expanded) != ports::code::success) {
    ky::Trace(L"%i: %s Error: '%s' names an undefined variable.\n", index, log_name, path.c_str());
    return ports::code::gen_failure;
  }
  const ports::System& system = ports::system();
  std::vector<std::wstring> protected_folders;
  if (!find_protected_folders(system, protected_folders)) {
    ky::Trace(L"%i: %s Error: the system does not tell its own folders.\n", index, log_name);
    return ports::code::gen_failure;
  }
  FolderTarget target = decide_folder(expanded, protected_folders);
  if (target.refusal == nullptr && misses_last_name(path, expanded)) target.refusal = missing_name;
  if (target.refusal != nullptr) {
    ky::Trace(L"%i: %s Error: '%s' is refused: %s.\n", index, log_name, expanded.c_str(), target.refusal);
    return ports::code::invalid_parameter;
  }
  keep_request("folder", shown(target.steps.back()));
  const ports::ErrorCode result = FolderRemoval(system, options, protected_folders).remove(target.steps);
  ky::Trace(L"%i: %s '%s' result %u.\n", index, log_name, expanded.c_str(), result);
  return result;
}

}  // namespace host
