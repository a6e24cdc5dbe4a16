#include "installer/desktop/commands/data/getstringfromxmlcommand.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "platform/ports/codes.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"GetStringFromXml";

/// A text that names an undefined variable stays as it is.
void Expand(std::wstring& text) {
  static_cast<void>(ExpandVariables(text, text));
}

}  // namespace

std::uint32_t CGetStringFromXmlCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const struct {
    const wchar_t* name;
    std::wstring& field;
  } rows[] = {{L"var", var},
              {L"file", file},
              {L"xmlVar", xmlVar},
              {L"attribute", attribute},
              {L"defaultValue", defaultValue},
              {L"xpath", xpath}};
  for (const auto& row : rows) {
    const AttributeReading reading = attributes.Read(row.name);
    if (!reading.present()) continue;
    if (reading.read != 0) return static_cast<std::uint32_t>(reading.read);
    row.field = DecipherOrStop(decrypter, reading.text.c_str());
  }
  return ports::code::success;
}

std::uint32_t CGetStringFromXmlCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const StandardEnd end(*this, guard, log_name);
  Expand(xpath);
  const std::wstring path = xmlVar.empty() ? Path() : std::wstring();
  if (xmlVar.empty() && path.empty()) return ports::code::internal_error;
  Reading reading;
  try {
    reading = xmlVar.empty() ? ReadFrom(base::xml::xml_reader<false>(path.c_str())) : ReadFromVariable();
  } catch (const std::system_error& error) {
    Put(keys::int_ReturnCode, static_cast<std::int32_t>(error.code().value()));
    return ports::code::not_found;
  } catch (...) {
    Put(keys::int_ReturnCode, static_cast<std::int32_t>(ports::code::not_found));
    return ports::code::not_found;
  }
  const NamedKey<CString*> key = StringKey(NarrowedByUnit(var));
  if (reading.code || reading.text.empty()) {
    ReportFailure(reading.code.value(), key.name.c_str());
  } else {
    Expand(reading.text);
    Trace(L"%i: %s : %S=\"%s\".\n", index, log_name, key.name.c_str(), reading.text.c_str());
    Put(key, new CString(reading.text.c_str()));
  }
  return ports::code::success;
}

std::wstring CGetStringFromXmlCommand::Path() const {
  std::wstring path = file;
  if (path.empty()) {
    if (const CString* const items = Get(keys::String_InstallItemsXml); items != nullptr) path = items->value;
  }
  Expand(path);
  return path;
}

CGetStringFromXmlCommand::Reading CGetStringFromXmlCommand::ReadFromVariable() const {
  const CString* const held = Get(StringKey(NarrowedByUnit(xmlVar)));
  // Without a text the file's reader takes it up, which stops the process: `file` is not looked at here.
  if (held == nullptr) return ReadFrom(base::xml::xml_reader<false>(nullptr));
  return ReadFrom(base::xml::xml_reader<true>(held->value));
}

CGetStringFromXmlCommand::Reading CGetStringFromXmlCommand::ReadFrom(const base::xml::xml_base_reader& reader) const {
  Reading reading;
  reading.text = attribute.empty() ? reader.get_value(xpath.c_str(), reading.code)
                                   : reader.get_attribute(xpath.c_str(), attribute.c_str(), reading.code);
  return reading;
}

void CGetStringFromXmlCommand::ReportFailure(std::int32_t code, const char* key) const {
  Put(keys::int_ReturnCode, code);
  Trace(L"%i: %s : Error reading %s.\n", index, log_name, xpath.c_str());
  if (defaultValue.empty()) return;
  Trace(L"%i: %s : Try to set default value\n", index, log_name);
  std::wstring value = defaultValue;
  Expand(value);
  Trace(L"%i: %s : set default value: %S=\"%s\".\n", index, log_name, key, value.c_str());
}

}  // namespace ky
