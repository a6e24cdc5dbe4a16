#include "installer/desktop/commands/data/getdatetimecommand.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/clock.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace ky {

namespace {
constexpr wchar_t log_name[] = L"GetDateTime";
constexpr std::uint32_t not_loaded = 1;
}  // namespace

std::uint32_t CGetDateTimeCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const AttributeReading name = attributes.Read(L"var");
  if (!name.usable()) return static_cast<std::uint32_t>(name.present() ? name.read : name.found);
  var = NarrowedWithinLength(DecipherOrStop(decrypter, name.text.c_str()));
  return var ? ports::code::success : not_loaded;
}

std::uint32_t CGetDateTimeCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const GuardLeaver leaver(guard);
  const NamedKey<std::int32_t> key{base::strings::format("int_%s", static_cast<const char*>(var.get()))};
  const auto time = static_cast<std::int32_t>(static_cast<std::uint32_t>(ports::system().clock.seconds_since_1970()));
  Trace(L"%i: %s Begin execute '%S'=%i.\n", index, log_name, key.name.c_str(), time);
  Put(key, time);
  EndExecute(*this, log_name);
  return ports::code::success;
}

}  // namespace ky
