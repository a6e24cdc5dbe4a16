#include "platform/win32/tokens.h"

#include <windows.h>

#include "platform/win32/handles.h"

namespace win32 {

namespace {

LUID native(ports::PrivilegeValue value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {static_cast<DWORD>(bits), static_cast<LONG>(bits >> 32)};
}

ports::PrivilegeValue ported(const LUID& luid) {
  return ports::PrivilegeValue{(static_cast<std::uint64_t>(static_cast<DWORD>(luid.HighPart)) << 32) | luid.LowPart};
}

TOKEN_PRIVILEGES native(const ports::PrivilegeState& state) {
  return {state.count, {{native(state.privilege), state.attributes}}};
}

static_assert(sizeof(TOKEN_PRIVILEGES) == 16);

}  // namespace

bool Tokens::open_own(std::uint32_t access, ports::Handle& token) {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), access, &opened)) return false;
  token = win32::ported(opened);
  return true;
}

bool Tokens::privilege_value(const wchar_t* name, ports::PrivilegeValue& out) {
  LUID found{};
  if (!LookupPrivilegeValueW(nullptr, name, &found)) return false;
  out = ported(found);
  return true;
}

bool Tokens::adjust(ports::Handle token, const ports::PrivilegeState& state, ports::PrivilegeState* previous) {
  TOKEN_PRIVILEGES wanted = native(state);
  TOKEN_PRIVILEGES before{};
  DWORD returned = 0;
  if (!AdjustTokenPrivileges(win32::native(token), FALSE, &wanted, sizeof wanted,
                             previous == nullptr ? nullptr : &before, previous == nullptr ? nullptr : &returned)) {
    return false;
  }
  if (previous != nullptr) {
    *previous = {before.PrivilegeCount, ported(before.Privileges[0].Luid), before.Privileges[0].Attributes};
  }
  return true;
}

}  // namespace win32
