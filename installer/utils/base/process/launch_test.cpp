#include "installer/utils/base/process/launch.h"

#include "installer/utils/base/process/desktop_launch.h"
#include "platform/ports/processes.h"
#include "tests/support/bound_world.h"

namespace base::process {
namespace {

constexpr wchar_t tool[] = L"C:\\Tools\\tool.exe";

class Launch : public support::BoundWorld {
 protected:
  Launch() {
    world.program(tool, 500, 7);
    start();
  }
};

TEST_F(Launch, AProgramStartsInItsFolderAndItsHandlesAreTheCallers) {
  for (const wchar_t* folder : {L"C:\\Tools", L""}) {
    const LaunchedProcess launched = RunCommandLine(L"\"C:\\Tools\\tool.exe\" /x", folder);
    ASSERT_NE(launched.process, ports::Handle::null);
    EXPECT_NE(launched.thread, ports::Handle::null);
    EXPECT_NE(launched.thread_id, 0u);
    const machine::StartedProcess started = machine->state().started.back();
    EXPECT_EQ(started.id, launched.pid);
    EXPECT_EQ(started.command_line, L"\"C:\\Tools\\tool.exe\" /x");
    EXPECT_EQ(started.folder, *folder == L'\0' ? world.state.environment.current_folder : folder);
    CloseLaunched(launched);
  }
}

TEST_F(Launch, WhatDoesNotStartIsAllZero) {
  const auto expect_nothing = [](const LaunchedProcess& launched) {
    EXPECT_EQ(launched.process, ports::Handle::null);
    EXPECT_EQ(launched.thread, ports::Handle::null);
    EXPECT_EQ(launched.pid + launched.thread_id, 0u);
    CloseLaunched(launched);
  };
  expect_nothing(RunCommandLine(L"", L"C:\\Tools"));
  EXPECT_EQ(faulty->calls(Operation::processes_create), 0u);
  expect_nothing(RunCommandLine(L"C:\\absent.exe", L""));
  faulty->fail(Operation::processes_create, 2, false, ports::code::elevation_required);
  expect_nothing(RunCommandLine(tool, L""));
  CloseLaunched({0, 0, ports::Handle::invalid, ports::Handle::null});
  EXPECT_EQ(faulty->calls(Operation::waits_close), 0u);
}

TEST_F(Launch, TheDesktopTakesARequestOrNobodyDoes) {
  EXPECT_TRUE(ShellExecuteAsDesktopUser(tool, L"/x", L"C:\\Tools", L""));
  for (const Operation operation :
       {Operation::com_initialize, Operation::processes_find_desktop, Operation::processes_execute_on_desktop}) {
    start();
    faulty->fail(operation, 1, false, static_cast<ports::ErrorCode>(ports::code::fail));
    EXPECT_FALSE(ShellExecuteAsDesktopUser(tool, L"/x", L"C:\\Tools", L""));
    ports::DesktopShell desktop{};
    EXPECT_FALSE(ports::succeeded(system->processes.find_desktop(desktop))) << "COM was left";
  }
  world.state.environment.desktop = false;
  start();
  EXPECT_FALSE(ShellExecuteAsDesktopUser(tool, L"/x", L"C:\\Tools", L""));
}

}  // namespace
}  // namespace base::process
