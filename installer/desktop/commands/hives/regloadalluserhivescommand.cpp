#include "installer/desktop/commands/hives/regloadalluserhivescommand.h"

#include <span>
#include <utility>

#include "installer/desktop/commands/base/trace.h"
#include "installer/desktop/commands/hives/hive_shape.h"
#include "installer/desktop/commands/hives/user_hives.h"
#include "installer/extern/base/include/winapi/scoped_registry_key.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"RegLoadAllUserHivesCommand";
constexpr wchar_t profile_list[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\";
constexpr std::uint32_t room_for_name = 51;  // terminator included; a longer name ends the walk

[[nodiscard]] bool IsLoaded(const std::wstring& sid) {
  winapi::scoped_registry_key key;
  return ports::system().registry.open(ports::RegistryKey::users, sid.c_str(), 0, ports::registry_access::enumerate,
                                       key.receive()) == ports::code::success;
}

}  // namespace

std::uint32_t CRegLoadAllUserHivesCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return InHiveShape(
      *this, guard, log_name, [this] { CollectProfiles(); },
      [this] {
        for (const UserProfile& profile : profiles) Mount(profile);
      });
}

void CRegLoadAllUserHivesCommand::CollectProfiles() {
  winapi::scoped_registry_key list;
  if (ports::system().registry.open(ports::RegistryKey::local_machine, profile_list, 0,
                                    ports::registry_access::enumerate, list.receive()) != ports::code::success) {
    Trace(L"%i: %s Error: Could not open the ProfileList key.\n", index, log_name);
    return;
  }
  if (CollectFrom(list.get()) != ports::code::no_more_items) {
    Trace(L"%i: %s Error: Could not completely enumerate all the children of ProfileList.\n", index, log_name);
  }
}

/// Gives what ended the walk.
ports::ErrorCode CRegLoadAllUserHivesCommand::CollectFrom(ports::RegistryKey list) {
  ports::Registry& registry = ports::system().registry;
  std::wstring name;
  for (std::uint32_t position = 0;; ++position) {
    if (const auto end = registry.subkey_within(list, position, room_for_name, name)) return end;
    if (IsPersonsProfile(name)) CollectOne(name);
  }
}

void CRegLoadAllUserHivesCommand::CollectOne(const std::wstring& sid) {
  ports::Registry& registry = ports::system().registry;
  const std::wstring key = profile_list + sid;
  const auto read = [&](std::span<wchar_t> into, std::uint32_t& size) {
    return registry.get_text(ports::RegistryKey::local_machine, key.c_str(), L"ProfileImagePath", into, size) ==
           ports::code::success;
  };
  std::uint32_t size = 0;
  if (!read({}, size)) {
    Trace(L"%i: %s Error: Could not get the size of a ProfileList child.\n", index, log_name);
    return;
  }
  std::wstring path(size, L'\0');
  constexpr std::uint32_t bytes_each = 2;
  if (!read(std::span(path).first(size / bytes_each), size)) {
    Trace(L"%i: %s Error: Could not get the value of a ProfileList child.\n", index, log_name);
    return;
  }
  profiles.push_back({sid, std::move(path)});
}

void CRegLoadAllUserHivesCommand::Mount(const UserProfile& profile) const {
  if (IsLoaded(profile.sid)) {
    Trace(L"%i: %s: User hive '%s' already loaded.\n", index, log_name, profile.sid.c_str());
    return;
  }
  const std::wstring file = std::wstring(profile.profilePath.c_str()) + L"\\NTUSER.DAT";
  const ports::ErrorCode error =
      ports::system().registry.load_hive(ports::RegistryKey::users, MountName(profile.sid).c_str(), file.c_str());
  Trace(error == ports::code::success ? L"%i: %s: User hive '%s' loaded now.\n"
                                      : L"%i: %s Error: Could not load user hive '%s'.\n",
        index, log_name, profile.sid.c_str());
}

}  // namespace ky
