#include "installer/desktop/commands/data/getdatetimecommand.h"

#include <limits>

#include "platform/ports/system.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

using GetDateTime = CommandFixture;

TEST_F(GetDateTime, StoresTheClocksLow32Bits) {
  const struct {
    std::int64_t seconds;
    std::int32_t stored;
  } rows[] = {{1700000000, 1700000000}, {2147483648, std::numeric_limits<std::int32_t>::min()}, {4294967301, 5}};
  for (const auto& row : rows) {
    log.clear();
    const Loaded loaded = load("GetDateTime", {{"var", "Now"}});
    machine::State state = machine::bare_state();
    state.clock.milliseconds_since_1970 = row.seconds * 1000;
    machine::Machine then(std::move(state), {});
    const ports::System at_that_time = then.system(*engines);
    ports::bind(at_that_time);
    EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
    ports::bind(system);
    EXPECT_EQ(get_int("Now"), row.stored);
    EXPECT_EQ(log, (std::vector<std::wstring>{
                       L"5: GetDateTime Begin execute 'int_Now'=" + std::to_wstring(row.stored) + L".\n",
                       L"5: GetDateTime End execute. Next command 6.\n"}));
  }
}

TEST_F(GetDateTime, DoesNotLoadWithoutAName) {
  EXPECT_EQ(load("GetDateTime", {{"next", "3"}}).result, 1u);
}

}  // namespace
}  // namespace ky
