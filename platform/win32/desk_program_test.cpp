#include "platform/desk/program.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

TEST(Program, GetsItsInputAndArgumentsAndGivesBackWhatItWrites) {
  const desk::ProgramRun said = desk::run_program("cmd", {"/c", "echo", "hello&exit 3"}, "", 60s);
  EXPECT_EQ(said.failure, "");
  EXPECT_EQ(said.exit_code, 0) << "the ampersand was in quotes";
  EXPECT_EQ(said.output, "\"hello&exit 3\"\r\n");
  const desk::ProgramRun fed = desk::run_program("cmd", {}, "@exit 5\r\n", 60s);
  EXPECT_EQ(fed.exit_code, 5) << fed.output;
}

TEST(Program, ThatIsAbsentOrDoesNotEndIsToldInOneLine) {
  const desk::ProgramRun absent = desk::run_program("ky-no-such-program", {}, "", 60s);
  EXPECT_FALSE(absent.found);
  EXPECT_EQ(absent.failure, "ky-no-such-program: cannot be started: it is not on the PATH");
  EXPECT_EQ(desk::run_program("cmd", {"/c", "for /l %i in (0,0,1) do @rem"}, "", 500ms).failure,
            "cmd: did not end in time");
}

}  // namespace
