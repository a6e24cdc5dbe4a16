#include "installer/utils/base/process/scoped_privilege.h"

#include "platform/machine/privileges.h"
#include "tests/support/bound_world.h"

namespace base::process {
namespace {

using machine::Privileges;
namespace privilege = machine::privilege;

class Privilege : public support::BoundWorld {
 protected:
  Privileges enabled() { return machine->state().enabled_privileges; }
};

TEST_F(Privilege, IsOnForTheScopeAndOnlyWhatWasChangedGoesBack) {
  const struct {
    const wchar_t* name;
    Privileges held, before, within;
    bool succeeded;
  } rows[] = {
      {L"SeDebugPrivilege", {privilege::debug}, {}, {privilege::debug}, true},
      {L"SeDebugPrivilege", {privilege::debug}, {privilege::debug}, {privilege::debug}, true},
      {L"SeDebugPrivilege", {privilege::backup}, {privilege::backup}, {privilege::backup}, true},
      {L"SeNoSuchPrivilege", {privilege::debug}, {}, {}, false},
      {L"", {privilege::debug}, {}, {}, false},
  };
  for (const auto& row : rows) {
    world.state.environment.privileges = row.held;
    world.state.enabled_privileges = row.before;
    start();
    {
      const ScopedPrivilege held(row.name);
      EXPECT_EQ(held.succeeded(), row.succeeded) << &row - rows;
      EXPECT_EQ(enabled(), row.within) << &row - rows;
    }
    EXPECT_EQ(enabled(), row.before) << &row - rows;
  }
}

TEST_F(Privilege, AFailureOnTheWayIsNoSuccessAndLeavesNothing) {
  world.state.environment.privileges = Privileges{privilege::debug};
  world.state.enabled_privileges = {};
  for (const Operation operation :
       {Operation::tokens_open_own, Operation::tokens_privilege_value, Operation::tokens_adjust}) {
    start();
    faulty->fail(operation, 1, false, ports::code::access_denied);
    {
      const ScopedPrivilege held(L"SeDebugPrivilege");
      EXPECT_FALSE(held.succeeded());
      EXPECT_EQ(enabled(), Privileges());
    }
    EXPECT_EQ(enabled(), Privileges());
    EXPECT_LE(faulty->calls(Operation::tokens_adjust), 1u) << "nothing was changed that could go back";
  }
}

}  // namespace
}  // namespace base::process
