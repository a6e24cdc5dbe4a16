#include "platform/ports/tokens.h"

#include "platform/ports/threads.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::Handle;
using ports::PrivilegeState;
namespace access = ports::token_access;
namespace code = ports::code;

class Tokens : public Contract {
 protected:
  ~Tokens() override {
    for (const Handle token : opened_) EXPECT_TRUE(system().waits.close(token));
  }

  Handle open(std::uint32_t wanted) {
    Handle token = Handle::null;
    EXPECT_TRUE(system().tokens.open_own(wanted, token)) << last_error();
    opened_.push_back(token);
    return token;
  }
  PrivilegeState wanted(const wchar_t* name, std::uint32_t attributes) {
    PrivilegeState state{1, ports::PrivilegeValue::null, attributes};
    EXPECT_TRUE(system().tokens.privilege_value(name, state.privilege)) << last_error();
    return state;
  }

 private:
  std::vector<Handle> opened_;
};

TEST_P(Tokens, APrivilegeIsSwitchedOnAndBack) {
  const Handle token = open(access::adjust_privileges | access::query);
  const PrivilegeState off = wanted(L"SeDebugPrivilege", 0);
  const PrivilegeState on = wanted(L"SeDebugPrivilege", ports::privilege_enabled);
  PrivilegeState previous;
  ASSERT_TRUE(system().tokens.adjust(token, off, nullptr));
  EXPECT_TRUE(system().tokens.adjust(token, on, &previous));
  EXPECT_EQ(last_error(), code::success);
  EXPECT_EQ(previous.count, 1U);
  EXPECT_EQ(previous.privilege, on.privilege);
  EXPECT_EQ(previous.attributes & ports::privilege_enabled, 0U);
  PrivilegeState unchanged;
  EXPECT_TRUE(system().tokens.adjust(token, on, &unchanged));
  expect_but_for_wine("privileges that did not change", unchanged.count == 0);
  EXPECT_TRUE(system().tokens.adjust(token, previous, nullptr));
  EXPECT_TRUE(system().tokens.adjust(token, on, &previous));
  EXPECT_EQ(previous.attributes & ports::privilege_enabled, 0U) << "it went back";
}

TEST_P(Tokens, WhatCannotBeAdjustedSaysWhy) {
  PrivilegeState state = wanted(L"SeDebugPrivilege", ports::privilege_enabled);
  ports::PrivilegeValue value = ports::PrivilegeValue::null;
  EXPECT_EQ(code_of(system().tokens.privilege_value(L"SeNonsensePrivilege", value)), code::no_such_privilege);
  EXPECT_EQ(code_of(system().tokens.adjust(open(access::query), state, nullptr)), code::access_denied);
  EXPECT_EQ(code_of(system().tokens.adjust(open(access::adjust_privileges), state, &state)), code::access_denied)
      << "the former state is a query";
  EXPECT_EQ(code_of(system().tokens.adjust(Handle::null, state, nullptr)), code::invalid_handle);

  // The call succeeds for a privilege that the token has not got.
  state.privilege = ports::PrivilegeValue{0x7FFF0000};
  PrivilegeState previous{7, ports::PrivilegeValue::null, 0};
  EXPECT_TRUE(system().tokens.adjust(open(access::adjust_privileges | access::query), state, &previous));
  EXPECT_EQ(last_error(), code::not_all_assigned);
}

KY_CONTRACT(Tokens);

}  // namespace

}  // namespace contract
