#include "platform/machine/privileges.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/machine/names.h"
#include "platform/machine/state.h"

namespace machine {

namespace {

// The first one's number is 2, the others follow.
constexpr std::size_t first_number = 2;
constexpr std::array<std::wstring_view, 35> names = {L"SeCreateTokenPrivilege",
                                                     L"SeAssignPrimaryTokenPrivilege",
                                                     L"SeLockMemoryPrivilege",
                                                     L"SeIncreaseQuotaPrivilege",
                                                     L"SeMachineAccountPrivilege",
                                                     L"SeTcbPrivilege",
                                                     L"SeSecurityPrivilege",
                                                     L"SeTakeOwnershipPrivilege",
                                                     L"SeLoadDriverPrivilege",
                                                     L"SeSystemProfilePrivilege",
                                                     L"SeSystemtimePrivilege",
                                                     L"SeProfileSingleProcessPrivilege",
                                                     L"SeIncreaseBasePriorityPrivilege",
                                                     L"SeCreatePagefilePrivilege",
                                                     L"SeCreatePermanentPrivilege",
                                                     L"SeBackupPrivilege",
                                                     L"SeRestorePrivilege",
                                                     L"SeShutdownPrivilege",
                                                     L"SeDebugPrivilege",
                                                     L"SeAuditPrivilege",
                                                     L"SeSystemEnvironmentPrivilege",
                                                     L"SeChangeNotifyPrivilege",
                                                     L"SeRemoteShutdownPrivilege",
                                                     L"SeUndockPrivilege",
                                                     L"SeSyncAgentPrivilege",
                                                     L"SeEnableDelegationPrivilege",
                                                     L"SeManageVolumePrivilege",
                                                     L"SeImpersonatePrivilege",
                                                     L"SeCreateGlobalPrivilege",
                                                     L"SeTrustedCredManAccessPrivilege",
                                                     L"SeRelabelPrivilege",
                                                     L"SeIncreaseWorkingSetPrivilege",
                                                     L"SeTimeZonePrivilege",
                                                     L"SeCreateSymbolicLinkPrivilege",
                                                     L"SeDelegateSessionUserImpersonatePrivilege"};

}  // namespace

std::optional<ports::PrivilegeValue> privilege_named(std::wstring_view name) {
  const auto found =
      std::find_if(names.begin(), names.end(), [name](std::wstring_view one) { return same_name(one, name); });
  if (found == names.end()) return std::nullopt;
  return ports::PrivilegeValue{static_cast<std::size_t>(found - names.begin()) + first_number};
}

std::wstring privilege_name(ports::PrivilegeValue value) {
  const auto number = static_cast<std::size_t>(value);
  if (number < first_number || number - first_number >= names.size()) return {};
  return std::wstring(names[number - first_number]);
}

Privileges held_privileges(const State& state) {
  const EnvironmentFacts& facts = state.environment;
  if (facts.privileges) return *facts.privileges;
  if (!facts.elevated) return {privilege::change_notify};
  Privileges held = {privilege::security, privilege::take_ownership, privilege::backup,       privilege::restore,
                     privilege::shutdown, privilege::debug,          privilege::change_notify};
  if (facts.may_link) held.insert(privilege::create_symbolic_link);
  return held;
}

bool privilege_enabled(const State& state, ports::PrivilegeValue value) {
  return held_privileges(state).contains(value) && state.enabled_privileges.contains(value);
}

}  // namespace machine
