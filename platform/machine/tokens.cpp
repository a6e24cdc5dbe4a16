#include "platform/machine/tokens.h"

#include <memory>

#include "platform/machine/handles.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::PrivilegeState;

namespace {

struct Token final : Object {
  explicit Token(std::uint32_t with_access) : Object(ObjectKind::token), access(with_access) {}
  const std::uint32_t access;
};

}  // namespace

bool Tokens::fail(ports::ErrorCode error) {
  errors_.set_last(error);
  return false;
}

bool Tokens::open_own(std::uint32_t access, ports::Handle& token) {
  token = handles_.open(std::make_shared<Token>(access));
  return true;
}

bool Tokens::privilege_value(const wchar_t* name, ports::PrivilegeValue& out) {
  const auto value = privilege_named(name == nullptr ? L"" : name);
  if (!value) return fail(code::no_such_privilege);
  out = *value;
  return true;
}

bool Tokens::adjust(ports::Handle handle, const PrivilegeState& state, PrivilegeState* previous) {
  const auto token = handles_.find_as<Token>(handle);
  if (token == nullptr) return fail(code::invalid_handle);
  const std::uint32_t wanted =
      ports::token_access::adjust_privileges | (previous != nullptr ? ports::token_access::query : 0);
  if ((token->access & wanted) != wanted) return fail(code::access_denied);
  if (previous != nullptr) *previous = {};
  const ports::Lock lock(world_.mutex);
  Privileges& enabled = world_.state.enabled_privileges;
  ports::ErrorCode outcome = code::success;
  if (state.count > 0 && !held_privileges(world_.state).contains(state.privilege)) {
    outcome = code::not_all_assigned;
  } else if (state.count > 0) {
    const bool was = enabled.contains(state.privilege);
    const bool is = (state.attributes & ports::privilege_enabled) != 0;
    if (was != is && previous != nullptr) *previous = {1, state.privilege, was ? ports::privilege_enabled : 0};
    if (is) {
      enabled.insert(state.privilege);
    } else {
      enabled.erase(state.privilege);
    }
  }
  errors_.set_last(outcome);
  return true;
}

}  // namespace machine
