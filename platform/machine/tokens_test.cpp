#include "platform/machine/tokens.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using ports::PrivilegeState;
using support::NamedWorld;

TEST(MachineTokens, WhoRunsDecidesWhatIsHeld) {
  const auto held = [](bool elevated, bool may_link, std::optional<Privileges> told) {
    State state;
    state.environment.elevated = elevated;
    state.environment.may_link = may_link;
    state.environment.privileges = std::move(told);
    return held_privileges(state);
  };
  EXPECT_EQ(held(false, true, {}), Privileges{privilege::change_notify});
  EXPECT_EQ(held(true, true, {}).size(), held(true, false, {}).size() + 1);
  EXPECT_TRUE(held(true, false, {}).contains(privilege::debug));
  EXPECT_EQ(held(true, true, Privileges{privilege::backup}), Privileges{privilege::backup});
  EXPECT_EQ(privilege_named(L"sedebugprivilege"), privilege::debug);
  EXPECT_EQ(privilege_named(privilege_name(privilege::create_symbolic_link)), privilege::create_symbolic_link);
  EXPECT_EQ(privilege_named(L"SeDebug"), std::nullopt);
}

TEST(MachineTokens, APrivilegeIsSwitchedAsTheSystemDoes) {
  NamedWorld world;
  world.state.environment.privileges = Privileges{privilege::debug};
  const auto machine = world.make();
  Tokens& tokens = machine->tokens();
  ports::Handle token = ports::Handle::null;
  ASSERT_TRUE(tokens.open_own(ports::token_access::adjust_privileges | ports::token_access::query, token));
  const PrivilegeState on{1, privilege::debug, ports::privilege_enabled};
  const PrivilegeState off{1, privilege::debug, 0};
  const PrivilegeState absent{1, privilege::restore, ports::privilege_enabled};
  const struct {
    PrivilegeState asked;
    std::uint32_t changed;
    std::uint32_t before;
    ports::ErrorCode error;
    bool enabled;
  } steps[] = {
      {on, 1, 0, code::success, true},
      {on, 0, 0, code::success, true},
      {absent, 0, 0, code::not_all_assigned, true},
      {PrivilegeState{}, 0, 0, code::success, true},
      {off, 1, ports::privilege_enabled, code::success, false},
  };
  for (const auto& step : steps) {
    PrivilegeState previous{7, privilege::shutdown, 7};
    EXPECT_TRUE(tokens.adjust(token, step.asked, &previous));
    EXPECT_EQ(machine->errors().last(), step.error);
    EXPECT_EQ(previous.count, step.changed);
    EXPECT_EQ(previous.attributes, step.before);
    EXPECT_EQ(privilege_enabled(machine->state(), privilege::debug), step.enabled);
    EXPECT_FALSE(privilege_enabled(machine->state(), privilege::restore));
  }
  EXPECT_TRUE(machine->waits().close(token));
}

}  // namespace
}  // namespace machine
