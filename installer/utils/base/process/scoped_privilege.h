#pragma once

#include <string>

#include "platform/ports/tokens.h"
#include "platform/ports/types.h"

namespace base::process {

/// Switches a privilege of this process on for a scope (AdjustTokenPrivileges). At its end only what it changed goes
/// back. The token is the whole process's, whichever thread asks.
class ScopedPrivilege {
 public:
  explicit ScopedPrivilege(std::wstring name);
  ~ScopedPrivilege();
  ScopedPrivilege(const ScopedPrivilege&) = delete;
  ScopedPrivilege& operator=(const ScopedPrivilege&) = delete;

  /// True also where the account has not got the privilege: the system takes the call then too, and callers go by it.
  [[nodiscard]] bool succeeded() const { return succeeded_; }

 private:
  std::wstring name_;
  ports::Handle token_ = ports::Handle::null;
  ports::PrivilegeState previous_;
  bool succeeded_ = false;
};

}  // namespace base::process
