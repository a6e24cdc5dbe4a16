#include "installer/desktop/commands/data/evaluatecommand.h"

#include <limits>
#include <stdexcept>

#include "installer/desktop/commands/base/global_data.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

using Evaluate = CommandFixture;

TEST_F(Evaluate, StoresTheValueAsAnInteger) {
  const struct {
    const char* expression;
    std::int32_t stored;
  } rows[] = {{"x + 1", 1},
              {"0 - 7 / 2", -3},
              {"2 ^ 31", std::numeric_limits<std::int32_t>::min()},
              {"0 / 0", std::numeric_limits<std::int32_t>::min()},
              {"1 +", 0},
              {"[x] + 1", 0},
              {"y = 2.9", 2},
              // Cut to one byte this is a terminator, and the expression ends there.
              {"1\xC4\x80+ 1", 1}};
  for (const auto& row : rows) {
    put("Value", 99);
    run("Evaluate", {{"expression", row.expression}, {"resultVar", "Value"}});
    EXPECT_EQ(get_int("Value"), row.stored) << row.expression;
  }
  EXPECT_EQ(get_int("y"), 2);
}

TEST_F(Evaluate, TellsExpressionAndValue) {
  run("Evaluate", {{"expression", "2 * 3.5"}, {"resultVar", "Value"}, {"next", "9"}});
  EXPECT_EQ(log, (std::vector<std::wstring>{L"5: Evaluate Begin execute.\n", L"Expression: '2 * 3.5' = 7\n",
                                            L"5: Evaluate End execute. Next command 9.\n"}));
}

TEST_F(Evaluate, GoesOnWithoutItsAttributes) {
  put("", 99);
  run("Evaluate", {{"expression", "4"}});
  EXPECT_EQ(get_int(""), 4);
  put("Value", 99);
  run("Evaluate", {{"resultVar", "Value"}});  // not read without an expression
  EXPECT_EQ(get_int("Value"), 99);
  EXPECT_EQ(get_int(""), 0);
}

TEST_F(Evaluate, EndsAlsoWhereAnExceptionLeavesIt) {
  const Loaded loaded = load("Evaluate", {{"expression", "1"}, {"resultVar", "Value"}});
  BindStore([](const char* key) { return std::uint64_t{host::get_current(key)}; },
            [](const char*, std::uint64_t) { throw std::runtime_error("full"); });
  EXPECT_THROW(static_cast<void>(loaded.command->Execute(0, 0)), std::runtime_error);
  EXPECT_TRUE(loaded.command->executed);
  EXPECT_FALSE(loaded.command->GuardHeld());
  EXPECT_EQ(log.back(), L"5: Evaluate End execute. Next command 6.\n");
}

}  // namespace
}  // namespace ky
