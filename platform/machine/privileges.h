#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/ports/tokens.h"

namespace machine {

struct State;

using Privileges = std::set<ports::PrivilegeValue>;

/// Those that the machine itself asks for. Their numbers are the same on every Windows.
namespace privilege {
inline constexpr ports::PrivilegeValue security{8};
inline constexpr ports::PrivilegeValue take_ownership{9};
inline constexpr ports::PrivilegeValue backup{17};
inline constexpr ports::PrivilegeValue restore{18};
inline constexpr ports::PrivilegeValue shutdown{19};
inline constexpr ports::PrivilegeValue debug{20};
inline constexpr ports::PrivilegeValue change_notify{23};
inline constexpr ports::PrivilegeValue create_symbolic_link{35};
}  // namespace privilege

/// By its name, "SeDebugPrivilege", in any case.
[[nodiscard]] std::optional<ports::PrivilegeValue> privilege_named(std::wstring_view name);
/// Empty for a number that is none.
[[nodiscard]] std::wstring privilege_name(ports::PrivilegeValue value);

/// What the token of this process has: what the machine says, else what an administrator, or anybody, has.
[[nodiscard]] Privileges held_privileges(const State& state);

/// Whether a privilege of this process is held and switched on, which is what the system asks when one is needed.
[[nodiscard]] bool privilege_enabled(const State& state, ports::PrivilegeValue value);

}  // namespace machine
