#include "installer/desktop/commands/base/attributes.h"

#include <cwchar>
#include <exception>
#include <utility>

#include "installer/desktop/commands/base/decipher.h"
#include "installer/extern/base/include/winapi/com_error.h"
#include "installer/utils/base/strings/number.h"
#include "installer/utils/base/strings/string_convert.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"
#include "platform/ports/xml.h"

namespace ky {

Attributes::Attributes(AttributeMap** map) : map_(map == nullptr ? nullptr : std::exchange(*map, nullptr)) {}

Attributes::~Attributes() {
  if (map_ != nullptr) ports::system().xml.release(map_);
}

AttributeReading Attributes::Read(const wchar_t* name) const {
  if (map_ == nullptr) throw winapi::com_error(ports::code::pointer);
  ports::Xml& xml = ports::system().xml;
  AttributeReading reading;
  ports::XmlNode* node = nullptr;
  reading.found = xml.named_item(map_, name, node);
  if (reading.found != 0) return reading;
  if (node == nullptr) throw winapi::com_error(ports::code::pointer);
  reading.read = xml.text(node, reading.text);
  xml.release(node);
  return reading;
}

ports::Result Attributes::Length(std::int32_t& out) const {
  if (map_ == nullptr) throw winapi::com_error(ports::code::pointer);
  return ports::system().xml.length(map_, out);
}

std::optional<std::wstring> Attributes::ReadAttribute(const wchar_t* name) const {
  if (map_ == nullptr || name == nullptr || *name == L'\0') return std::nullopt;
  try {
    AttributeReading reading = Read(name);
    if (!reading.usable()) return std::nullopt;
    return std::move(reading.text);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::uint32_t Attributes::ReadCipheredAttribute(Decrypter& decrypter, const wchar_t* name, std::wstring& out) const {
  const std::optional<std::wstring> ciphered = ReadAttribute(name);
  if (!ciphered) return ports::code::internal_error;
  out = DecipherOrStop(decrypter, ciphered->c_str());
  return ports::code::success;
}

std::uint32_t Attributes::LoadBase(CInstallCommand& command) const {
  AttributeMap* second = map_;
  if (second != nullptr) ports::system().xml.add_reference(second);
  return command.CInstallCommand::LoadCiphered(&second);
}

NarrowHeapString NarrowedWithinLength(const wchar_t* text) {
  std::string name;
  if (!base::strings::to_active_code_page(text, name) || name.size() > std::wcslen(text)) return nullptr;
  return DuplicateString<char>(name);
}

std::int32_t DecipheredInteger(Decrypter& decrypter, const AttributeReading& reading) {
  return base::strings::to_integer(DecipherOrStop(decrypter, reading.text.c_str()));
}

}  // namespace ky
