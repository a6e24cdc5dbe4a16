#include "host/commands/setvariablecommand.h"

#include "host/commands/attribute_reader.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"

namespace host {

namespace {
constexpr wchar_t log_name[] = L"SetVariable";
}

std::uint32_t CSetVariableCommand::LoadCiphered(ky::AttributeMap** map) {
  const AttributeReader reader(map);
  if (const std::uint32_t failure = reader.load_base(*this); failure != 0) return failure;
  std::wstring name;
  if (!reader.text(L"var", name) || name.empty()) return ports::code::invalid_parameter;
  var = ky::NarrowedByUnit(name);
  value = reader.integer(L"value");
  if (std::wstring text; reader.text(L"strValue", text)) strValue = text;
  return value || strValue ? ports::code::success : ports::code::invalid_parameter;
}

std::uint32_t CSetVariableCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return ky::InStandardShape(*this, guard, log_name, [this] { return Set(); });
}

std::uint32_t CSetVariableCommand::Set() const {
  if (strValue) {
    std::wstring text;
    if (ky::ExpandVariables(*strValue, text) != ports::code::success) {
      ky::Trace(L"%i: %s Error: '%s' names an undefined variable.\n", index, log_name, strValue->c_str());
      return ports::code::gen_failure;
    }
    const ky::NamedKey<ky::CString*> key = ky::StringKey(var);
    ky::CString* const replaced = ky::Get(key);
    ky::Put(key, new ky::CString(text));
    ky::Release(replaced);
    ky::Trace(L"%i: %s %S='%s'\n", index, log_name, key.name.c_str(), text.c_str());
  }
  if (value) {
    const ky::NamedKey<std::int32_t> key = ky::IntKey(var);
    ky::Put(key, *value);
    ky::Trace(L"%i: %s %S=%i\n", index, log_name, key.name.c_str(), *value);
  }
  return ports::code::success;
}

}  // namespace host
