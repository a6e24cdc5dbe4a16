#include "platform/ports/processes.h"

#include "platform/ports/com.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::Handle;
namespace code = ports::code;

class Processes : public Contract {
 protected:
  ports::Processes& processes() { return system().processes; }

  ports::ErrorCode try_create(const std::wstring& command_line, const wchar_t* directory = nullptr) {
    ports::CreatedProcess made;
    if (!processes().create(command_line.c_str(), directory, ports::creation_flag::no_window, made))
      return last_error();
    EXPECT_TRUE(system().waits.close(made.thread) && system().waits.close(made.process));
    return 0;
  }
  std::uint32_t wait(Handle process, std::uint32_t milliseconds) {
    return system().waits.wait({&process, 1}, false, milliseconds);
  }
  std::uint32_t exit_code(Handle process) {
    std::uint32_t out = 0;
    EXPECT_TRUE(processes().exit_code(process, out));
    return out;
  }
};

TEST_P(Processes, AProcessIsWaitedForAndTellsItsExitCode) {
  ports::CreatedProcess made;
  ASSERT_TRUE(
      processes().create(world().child(300, 7).command_line().c_str(), nullptr, ports::creation_flag::no_window, made))
      << last_error();
  EXPECT_NE(made.process_id, processes().current_id());
  EXPECT_EQ(exit_code(made.process), 259U);
  EXPECT_EQ(wait(made.process, 60000), 0U);
  EXPECT_EQ(exit_code(made.process), 7U);
  EXPECT_TRUE(system().waits.close(made.thread) && system().waits.close(made.process));
  std::uint32_t out = 0;
  EXPECT_EQ(code_of(processes().exit_code(made.process, out)), code::invalid_handle);
}

TEST_P(Processes, ATerminatedProcessEndsWithTheGivenCode) {
  ports::CreatedProcess made;
  ASSERT_TRUE(processes().create(world().child(60000, 0).command_line().c_str(), nullptr,
                                 ports::creation_flag::no_window, made));
  EXPECT_EQ(wait(made.process, 100), ports::wait_result::timeout);
  EXPECT_TRUE(processes().terminate(made.process, 9));
  EXPECT_EQ(wait(made.process, 60000), 0U);
  EXPECT_EQ(exit_code(made.process), 9U);
  EXPECT_TRUE(system().waits.close(made.thread) && system().waits.close(made.process));
}

TEST_P(Processes, ALaunchThatCannotBeSaysWhy) {
  const std::wstring folder = world().folder();
  const std::wstring text = folder + L"\\text.exe";
  make_file(text, std::string(200, 'x'));
  EXPECT_EQ(try_create(L"\"" + folder + L"\\missing.exe\" 1"), code::file_not_found);
  EXPECT_EQ(try_create(L"\"" + text + L"\""), code::bad_exe_format);
  EXPECT_EQ(try_create(world().child(0, 0).command_line(), (folder + L"\\missing").c_str()),
            code::directory_name_invalid);
  EXPECT_EQ(try_create(world().child(0, 0).command_line(), folder.c_str()), 0U);
}

TEST_P(Processes, TheShellStartsAProgramAndKeepsItsProcess) {
  const Child child = world().child(0, 5);
  ports::ShellRequest request;
  request.file = child.program.c_str();
  request.arguments = child.arguments.c_str();
  request.show = false;
  Handle process = Handle::null;
  ASSERT_TRUE(processes().shell_execute(request, process)) << last_error();
  ASSERT_NE(process, Handle::null);
  EXPECT_EQ(wait(process, 60000), 0U);
  EXPECT_EQ(exit_code(process), 5U);
  EXPECT_TRUE(system().waits.close(process));
  const std::wstring missing = world().folder() + L"\\missing.exe";
  request.file = missing.c_str();
  EXPECT_EQ(code_of(processes().shell_execute(request, process)), code::file_not_found);
}

TEST_P(Processes, TheDesktopsShellTakesARequest) {
  world().start_shell();
  ASSERT_TRUE(ports::succeeded(system().com.initialize(ports::ComModel::apartment_threaded)));
  ports::DesktopShell desktop = ports::DesktopShell::null;
  ports::Result found = code::fail;
  for (int tries = 0; tries < 100 && !ports::succeeded(found); ++tries) {
    if (tries > 0) system().threads.sleep(100);  // A shell that is just starting is not there yet.
    found = processes().find_desktop(desktop);
  }
  ASSERT_TRUE(ports::succeeded(found)) << found;
  const Child child = world().child(0, 0);
  EXPECT_TRUE(ports::succeeded(processes().execute_on_desktop(desktop, child.program.c_str(), child.arguments.c_str(),
                                                              world().folder().c_str(), L"")));
  processes().release_desktop(desktop);
  system().com.uninitialize();
}

KY_CONTRACT(Processes);

}  // namespace

}  // namespace contract
