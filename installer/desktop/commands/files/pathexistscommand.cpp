#include "installer/desktop/commands/files/pathexistscommand.h"

#include <cstring>
#include <string>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/strings/string_convert.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr std::size_t longest_variable = 235;
constexpr std::uint32_t not_loaded = 1;

}  // namespace

std::uint32_t CPathExistsCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const AttributeReading where = attributes.Read(L"path");
  if (!where.usable()) return static_cast<std::uint32_t>(where.present() ? where.read : where.found);
  path = DuplicateString<wchar_t>(DecipherOrStop(decrypter, where.text.c_str()));

  const AttributeReading name = attributes.Read(L"variable");
  if (!name.usable()) return static_cast<std::uint32_t>(name.present() ? name.read : name.found);
  const wchar_t* const deciphered = DecipherValue(decrypter, name.text.c_str());
  std::string narrow;
  if (deciphered == nullptr || !base::strings::to_active_code_page(deciphered, narrow)) return not_loaded;
  variable = DuplicateString<char>(narrow);
  return ports::code::success;
}

std::uint32_t CPathExistsCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return InStandardShape(*this, guard, L"PathExists", [this] {
    LookUp();
    return ports::code::success;
  });
}

void CPathExistsCommand::LookUp() {
  // An undefined variable leaves the path as it stands: it is then looked for with its brackets.
  if (std::wstring expanded; path && ExpandVariables(path.get(), expanded) == ports::code::success) {
    path = DuplicateString<wchar_t>(expanded);
  }
  if (!variable || std::strlen(variable.get()) > longest_variable) {
    Trace(L"[PathExists] Cannot create integer variable name\n");
    return;
  }
  if (!path) return;
  Trace(L"[PathExists] Path='%s'\n", path.get());
  if (ports::system().files.exists(path.get())) {
    Put(IntKey(variable.get()), 1);
    return;
  }
  const ports::ErrorCode error = ports::system().errors.last();  // before the host's Put can change it
  Put(IntKey(variable.get()), 0);
  Trace(L"[PathExists] Path='%s' doesn't exist. GetLastError: '%d'\n", path.get(), error);
}

}  // namespace ky
