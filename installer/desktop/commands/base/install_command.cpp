#include "ky/install_command.h"

#include <string>
#include <string_view>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/heap_string.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/number.h"
#include "installer/utils/base/strings/string_convert.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace ky {

CInstallCommand::CInstallCommand() = default;
CInstallCommand::~CInstallCommand() = default;

std::int32_t CInstallCommand::GetIndex() {
  return index;
}

void CInstallCommand::SetIndex(std::int32_t position) {
  index = position;
}

std::int32_t CInstallCommand::GetNextIndex() {
  if (!executed) Trace(L"[InstallCommand] Warning: GetNextIndex called before Execute\n");
  return next >= 0 ? next : FollowingIndex();
}

bool CInstallCommand::CheckExecCondition() {
  if (!execCondition) return true;
  // All 64 bits count here, where every other reader looks at the low 32.
  if (GetStored(execCondition.get()) != 0) return true;
  executed = true;
  return false;
}

// No command calls this one: each has its own, most of them in the standard shape.
std::uint32_t CInstallCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    Trace(L"[InstallCommand] Error: Multiple threads attempting execution\n");
    return ports::code::internal_error;
  }
  const GuardLeaver leaver(guard);
  executed = true;
  return ports::code::success;
}

std::uint32_t CInstallCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  if (const auto reading = attributes.Read(L"index"); reading.usable()) index = DecipheredInteger(decrypter, reading);
  if (const auto reading = attributes.Read(L"next"); reading.usable()) next = DecipheredInteger(decrypter, reading);
  if (const auto reading = attributes.Read(L"errVar"); reading.present()) {
    if (reading.read != 0) return static_cast<std::uint32_t>(reading.read);
    std::string name;
    if (!base::strings::to_active_code_page(DecipherOrStop(decrypter, reading.text.c_str()), name)) {
      return ports::system().errors.last();
    }
    errVar = DuplicateString<char>(name);
  }
  if (const auto reading = attributes.Read(L"execCondition"); reading.present()) {
    if (reading.read != 0) return static_cast<std::uint32_t>(reading.read);
    const wchar_t* const name = DecipherOrStop(decrypter, reading.text.c_str());
    execCondition = DuplicateString<char>(base::strings::format("int_%S", name));
  }
  return ports::code::success;
}

std::uint32_t CInstallCommand::LoadPlain(AttributeMap** map) {
  const Attributes attributes(map);
  if (const auto reading = attributes.Read(L"index"); reading.usable()) {
    index = base::strings::to_decimal(reading.text.c_str());
  }
  if (const auto reading = attributes.Read(L"next"); reading.usable()) {
    next = base::strings::to_decimal(reading.text.c_str());
  }
  return ports::code::success;
}

}  // namespace ky
