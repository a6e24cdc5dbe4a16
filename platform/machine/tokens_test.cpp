#include "platform/machine/tokens.h"

#include <gtest/gtest.h>

#include "tests/support/named_world.h"

namespace machine {
namespace {

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

TEST(MachineTokens, OfWhatDoesNotChangeNoFormerStateIsTold) {
  support::NamedWorld world;
  world.state.environment.privileges = Privileges{privilege::debug};
  const auto machine = world.make();
  ports::Handle token = ports::Handle::null;
  ASSERT_TRUE(machine->tokens().open_own(ports::token_access::adjust_privileges | ports::token_access::query, token));
  for (const ports::PrivilegeState& asked : {ports::PrivilegeState{1, privilege::debug, 0},
                                             {1, privilege::restore, ports::privilege_enabled},
                                             ports::PrivilegeState{}}) {
    ports::PrivilegeState previous{7, privilege::shutdown, 7};
    EXPECT_TRUE(machine->tokens().adjust(token, asked, &previous));
    EXPECT_EQ(previous.count + previous.attributes, 0U);
  }
}

}  // namespace
}  // namespace machine
