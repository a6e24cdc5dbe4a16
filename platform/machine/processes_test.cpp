#include "platform/machine/processes.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using support::NamedWorld;
using Lines = std::vector<std::wstring>;

TEST(Images, ACommandLineIsTriedBlankByBlank) {
  EXPECT_EQ(program_candidates(L"\"C:\\a b.exe\" c"), Lines{L"C:\\a b.exe"});
  EXPECT_EQ(program_candidates(L"  C:\\a b  c"), (Lines{L"C:\\a", L"C:\\a b", L"C:\\a b  c"}));
  EXPECT_EQ(program_candidates(L"\"open"), Lines{L"open"});
  EXPECT_TRUE(program_candidates(L" \t").empty());
}

TEST(Images, TheFirstFileThatIsThereCounts) {
  NamedWorld world;
  world.file(L"C:\\Program Files\\A B\\tool.exe", "MZ").file(L"C:\\Windows\\System32\\sys.exe", "MZ");
  world.file(L"C:\\text.exe", "no program").folder(L"C:\\Program");
  const struct {
    const wchar_t* line;
    ports::ErrorCode error;
    const wchar_t* path;
  } rows[] = {
      {L"C:\\Program Files\\A B\\tool.exe /x", code::success, L"C:\\Program Files\\A B\\tool.exe"},
      {L"C:\\Program Files\\A B\\tool /x", code::success, L"C:\\Program Files\\A B\\tool.exe"},
      {L"sys -a", code::success, L"C:\\Windows\\System32\\sys.exe"},
      {L"kysetup.exe", code::success, NamedWorld::setup},
      {L"C:\\text.exe", code::bad_exe_format, L"C:\\text.exe"},
      {L"C:\\Program", code::file_not_found, L""},
      {L"absent.exe", code::file_not_found, L""},
  };
  for (const auto& row : rows) {
    const Image image = find_image(world.state, row.line);
    EXPECT_EQ(image.error, row.error) << &row - rows;
    EXPECT_EQ(image.path, row.path);
  }
}

class MachineProcesses : public testing::Test {
 protected:
  void start(const wchar_t* line) {
    machine = world.make();
    ASSERT_TRUE(machine->processes().create(line, nullptr, 0, process)) << machine->errors().last();
  }
  [[nodiscard]] std::uint32_t exit_code() {
    std::uint32_t code = 0;
    EXPECT_TRUE(machine->processes().exit_code(process.process, code));
    return code;
  }
  void wait_for_end() {
    const ports::Handle both[] = {process.process, process.thread};
    EXPECT_EQ(machine->waits().wait(both, true, ports::infinite), ports::wait_result::object_0);
  }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
  ports::CreatedProcess process;
};

TEST_F(MachineProcesses, AProgramDoesItsWorkAtItsEnd) {
  world.program(L"C:\\un.exe", 180'000, 7).file(L"C:\\App\\a", "x", ports::file_attribute::read_only);
  world.file(L"C:\\App\\locked")
      .held(L"C:\\App\\locked", 1, 0)
      .value(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\App\\S", L"v", L"x");
  world.file(L"C:\\alone").value(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Other", L"v", L"x");
  world.state.programs[0].effects = {{EffectKind::delete_folder, L"C:\\App", {}, {}, {}},
                                     {EffectKind::delete_file, L"C:\\alone", {}, {}, {}},
                                     {EffectKind::write_file, L"C:\\New\\done.txt", {}, {'o', 'k'}, {}},
                                     {EffectKind::delete_key, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\App", {}, {}, {}},
                                     {EffectKind::delete_value, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Other", L"v", {}, {}}};
  start(L"C:\\un.exe /S");
  const std::uint32_t begin = machine->clock().ticks();
  EXPECT_EQ(exit_code(), 259u);
  EXPECT_FALSE(machine->files().remove(L"C:\\un.exe"));
  EXPECT_TRUE(machine->files().exists(L"C:\\App\\a"));
  wait_for_end();
  EXPECT_EQ(machine->clock().ticks() - begin, 180'000u);
  EXPECT_EQ(exit_code(), 7u);
  EXPECT_FALSE(machine->files().exists(L"C:\\App\\a"));
  EXPECT_TRUE(machine->files().exists(L"C:\\App\\locked"));
  EXPECT_FALSE(machine->files().exists(L"C:\\alone"));
  EXPECT_TRUE(machine->files().exists(L"C:\\New\\done.txt"));
  EXPECT_TRUE(machine->files().remove(L"C:\\un.exe"));
  const State state = machine->state();
  EXPECT_EQ(key_path(state.registry, state.registry.last_key).find(L"App"), std::wstring::npos);
  const std::uint32_t own = machine->processes().current_id();
  const StartedProcesses expected = {
      {process.process_id, L"C:\\un.exe /S", L"C:\\Windows\\System32", L"C:\\un.exe", 7u, own}};
  EXPECT_EQ(state.started, expected);
}

TEST_F(MachineProcesses, ATerminatedProgramLeavesItsWorkUndone) {
  world.program(L"C:\\un.exe", 1000, 7).file(L"C:\\a");
  world.state.programs[0].effects = {{EffectKind::delete_file, L"C:\\a", {}, {}, {}}};
  start(L"C:\\un.exe");
  EXPECT_TRUE(machine->processes().terminate(process.process, 3));
  EXPECT_FALSE(machine->processes().terminate(process.process, 4));
  wait_for_end();
  machine->threads().sleep(2000);
  EXPECT_EQ(exit_code(), 3u);
  EXPECT_TRUE(machine->files().exists(L"C:\\a"));
}

TEST_F(MachineProcesses, RefusalsHaveTheSystemsCodes) {
  world.program(L"C:\\raise.exe", 0, 0).file(L"C:\\read.me");
  world.state.programs[0].needs_elevation = true;
  world.state.programs[0].refused = true;
  world.state.environment.elevated = false;
  world.state.environment.desktop = false;
  machine = world.make();
  Processes& processes = machine->processes();
  EXPECT_FALSE(processes.create(L"C:\\raise.exe", nullptr, 0, process));
  EXPECT_EQ(machine->errors().last(), code::elevation_required);
  EXPECT_FALSE(processes.create(L"C:\\raise.exe", L"C:\\absent", 0, process));
  EXPECT_EQ(machine->errors().last(), code::directory_name_invalid);
  ports::Handle shell = ports::Handle::invalid;
  EXPECT_FALSE(processes.shell_execute({L"runas", L"C:\\raise.exe"}, shell));
  EXPECT_EQ(machine->errors().last(), code::cancelled);
  EXPECT_TRUE(processes.shell_execute({L"open", L"C:\\read.me"}, shell));
  EXPECT_EQ(shell, ports::Handle::null);
  ports::DesktopShell desktop = ports::DesktopShell::null;
  EXPECT_LT(processes.find_desktop(desktop), 0);
  EXPECT_EQ(processes.initialize_com(), code::ok);
  EXPECT_EQ(processes.find_desktop(desktop), code::fail);
  processes.uninitialize_com();
}

}  // namespace
}  // namespace machine
