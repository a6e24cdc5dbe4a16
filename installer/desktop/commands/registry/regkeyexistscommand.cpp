#include "installer/desktop/commands/registry/regkeyexistscommand.h"

#include <string>
#include <string_view>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/extern/base/include/winapi/scoped_registry_key.h"
#include "installer/utils/base/strings/bounded.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"RegKeyExists";
constexpr std::uint32_t not_loaded = 1;
constexpr std::size_t key_room = 100;  // terminator included

/// Null for any other text.
[[nodiscard]] ports::RegistryKey RootNamed(std::wstring_view name) {
  if (name == L"HKEY_CLASSES_ROOT") return ports::RegistryKey::classes_root;
  if (name == L"HKEY_CURRENT_USER") return ports::RegistryKey::current_user;
  if (name == L"HKEY_LOCAL_MACHINE") return ports::RegistryKey::local_machine;
  if (name == L"HKEY_USERS") return ports::RegistryKey::users;
  return ports::RegistryKey::null;
}

}  // namespace

std::uint32_t CRegKeyExistsCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const AttributeReading base = attributes.Read(L"base");
  if (!base.usable()) return static_cast<std::uint32_t>(base.present() ? base.read : base.found);
  root = RootNamed(DecipherOrStop(decrypter, base.text.c_str()));
  if (root == ports::RegistryKey::null) return not_loaded;
  const AttributeReading key = attributes.Read(L"subkey");
  if (!key.usable()) return static_cast<std::uint32_t>(key.present() ? key.read : key.found);
  subkey = DuplicateString<wchar_t>(DecipherOrStop(decrypter, key.text.c_str()));
  const AttributeReading name = attributes.Read(L"variable");
  if (!name.usable()) return static_cast<std::uint32_t>(name.present() ? name.read : name.found);
  variable = DuplicateString<wchar_t>(DecipherOrStop(decrypter, name.text.c_str()));
  return ports::code::success;
}

std::uint32_t CRegKeyExistsCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const GuardLeaver leaver(guard);
  if (wchar_t* expanded = nullptr; ExpandToNew(subkey.get(), &expanded) != 0) subkey.reset(expanded);
  Trace(L"%i: %s '%s' Begin.\n", index, log_name, subkey.get());
  LookUp();
  EndExecute(*this, log_name);
  return ports::code::success;
}

void CRegKeyExistsCommand::LookUp() const {
  namespace access = ports::registry_access;
  winapi::scoped_registry_key key;
  const std::uint32_t wanted = Get(keys::int_x64) != 0 ? access::read | access::view_64 : access::read;
  if (ports::system().registry.open(root, subkey ? subkey.get() : L"", 0, wanted, key.receive()) !=
      ports::code::success) {
    Trace(L"%i: %s Cannot open key '%s'.\n", index, log_name, subkey.get());
    return;
  }
  Trace(L"%i: %s Opened key '%s'.\n", index, log_name, subkey.get());
  StoreFound();
}

/// A name that the code page does not have is not stored.
void CRegKeyExistsCommand::StoreFound() const {
  const std::wstring whole = base::strings::bounded(base::strings::format(L"int_%s", variable.get()), key_room,
                                                    L"RegKeyExists: variable too long");
  if (const NarrowHeapString name = NarrowedWithinLength(whole.c_str())) Put(NamedKey<std::int32_t>{name.get()}, 1);
}

}  // namespace ky
