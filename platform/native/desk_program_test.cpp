#include "platform/desk/program.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

TEST(Program, GetsItsInputAndArgumentsAsTheyStandAndGivesBackAllItWrites) {
  // More than any pipe holds.
  const std::string input(300'000, 'x');
  const desk::ProgramRun copied = desk::run_program("cat", {}, input, 20s);
  EXPECT_EQ(copied.failure, "");
  EXPECT_TRUE(copied.output == input);
  const desk::ProgramRun said =
      desk::run_program("sh", {"-c", "printf %s \"$1\"; echo wrong >&2; exit 3", "sh", "a \"b\" $HOME\\"}, "", 20s);
  EXPECT_EQ(said.failure, "");
  EXPECT_EQ(said.exit_code, 3);
  EXPECT_EQ(said.output, "a \"b\" $HOME\\");
  EXPECT_EQ(said.errors, "wrong\n");
}

TEST(Program, ThatIsAbsentOrDoesNotEndIsToldInOneLine) {
  const desk::ProgramRun absent = desk::run_program("ky-no-such-program", {}, "", 20s);
  EXPECT_FALSE(absent.found);
  EXPECT_EQ(absent.failure, "ky-no-such-program: cannot be started: it is not on the PATH");
  EXPECT_EQ(desk::run_program("sleep", {"60"}, "", 50ms).failure, "sleep: did not end in time");
  EXPECT_EQ(desk::run_program("sh", {"-c", "kill -9 $$"}, "", 20s).failure, "sh: was ended by signal 9");
}

}  // namespace
