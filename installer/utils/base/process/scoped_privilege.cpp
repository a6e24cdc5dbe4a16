#include "installer/utils/base/process/scoped_privilege.h"

#include <utility>

#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace base::process {

ScopedPrivilege::ScopedPrivilege(std::wstring name) : name_(std::move(name)) {
  ports::Tokens& tokens = ports::system().tokens;
  ports::Handle token = ports::Handle::null;
  if (!tokens.open_own(ports::token_access::adjust_privileges | ports::token_access::query, token)) return;
  token_ = token;
  ports::PrivilegeState wanted{1, ports::PrivilegeValue::null, ports::privilege_enabled};
  if (!tokens.privilege_value(name_.c_str(), wanted.privilege)) return;
  succeeded_ = tokens.adjust(token_, wanted, &previous_);
  if (!succeeded_) previous_ = {};
}

ScopedPrivilege::~ScopedPrivilege() {
  if (token_ == ports::Handle::null) return;
  if (previous_.count != 0) (void)ports::system().tokens.adjust(token_, previous_, nullptr);
  (void)ports::system().waits.close(token_);
}

}  // namespace base::process
