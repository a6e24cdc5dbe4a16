#include "tools/ky/rehearse/switched_environment.h"

#include <gtest/gtest.h>

namespace rehearsal {
namespace {

TEST(SwitchedEnvironment, TakesTheProgramOffACommandLine) {
  EXPECT_EQ(program_part(L"\"C:\\a b\\x.exe\" /q"), L"\"C:\\a b\\x.exe\"");
  EXPECT_EQ(program_part(L"x.exe /q"), L"x.exe");
  EXPECT_EQ(program_part(L"x.exe"), L"x.exe");
  EXPECT_EQ(program_part(L"\"open"), L"\"open");
}

TEST(SwitchedEnvironment, QuotesWhatTheRuntimeWouldSplit) {
  EXPECT_EQ(quoted(L"/silent"), L"/silent");
  EXPECT_EQ(quoted(L""), L"\"\"");
  EXPECT_EQ(quoted(L"a b"), L"\"a b\"");
  EXPECT_EQ(quoted(L"say \"x\""), L"\"say \\\"x\\\"\"");
  EXPECT_EQ(quoted(L"a b\\"), L"\"a b\\\\\"");
  EXPECT_EQ(quoted(L"a\\\"b"), L"\"a\\\\\\\"b\"");
}

TEST(SwitchedEnvironment, GivesTheParentALineOrMakesOne) {
  machine::RunningProgram parent;
  parent.image = L"C:\\a.exe";
  parent.command_line = L"a /old";
  EXPECT_EQ(with_line(parent, L"b /new").image, L"C:\\a.exe");
  EXPECT_EQ(with_line(parent, L"b /new").command_line, L"b /new");
  const machine::RunningProgram made = with_line({}, L"\"C:\\b c.exe\" /new");
  EXPECT_EQ(made.image, L"C:\\b c.exe");
  EXPECT_EQ(made.command_line, L"\"C:\\b c.exe\" /new");
}

}  // namespace
}  // namespace rehearsal
