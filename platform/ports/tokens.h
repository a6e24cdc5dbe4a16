#pragma once

#include <cstdint>

#include "platform/ports/types.h"

namespace ports {

namespace token_access {
inline constexpr std::uint32_t query = 0x8;
inline constexpr std::uint32_t adjust_privileges = 0x20;
}  // namespace token_access

inline constexpr std::uint32_t privilege_enabled = 0x2;  // SE_PRIVILEGE_ENABLED

/// A privilege's number on this computer (LUID); 0 is none.
enum class PrivilegeValue : std::uint64_t { null = 0 };

/// TOKEN_PRIVILEGES with room for one.
struct PrivilegeState {
  std::uint32_t count = 0;
  PrivilegeValue privilege = PrivilegeValue::null;
  std::uint32_t attributes = 0;
};

/// The privileges of this process. Any thread; failure leaves its code in the last error.
class Tokens {
 public:
  virtual ~Tokens() = default;

  /// OpenProcessToken of this process. Fails with access_denied. Closed with `Waits::close`.
  [[nodiscard]] virtual bool open_own(std::uint32_t access, Handle& token) = 0;

  /// LookupPrivilegeValueW on this computer. Fails with no_such_privilege.
  [[nodiscard]] virtual bool privilege_value(const wchar_t* name, PrivilegeValue& out) = 0;

  /// AdjustTokenPrivileges without disabling all. `previous` may be null, which needs no token_access::query; its count
  /// is 0 where nothing was changed. True also where the token has not the privilege: the last error is then
  /// not_all_assigned, else success. Fails with invalid_handle, access_denied.
  [[nodiscard]] virtual bool adjust(Handle token, const PrivilegeState& state, PrivilegeState* previous) = 0;
};

}  // namespace ports
