#include "installer/desktop/commands/process/closeprocess.h"

#include <regex>
#include <thread>

#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

using Attributes = CommandWorld::Attributes;

/// A tray program that closes 500 ms after "/quit", and one of the same beginning behind it in the snapshot.
support::NamedWorld tray_world() {
  support::NamedWorld world;
  std::uint32_t id = 1000;
  for (const wchar_t* path : {L"C:\\Suite\\KyTray.exe", L"C:\\Other\\KyTrayer.exe"}) {
    world.process(path, id += 4).temper.closes_after = 500;
  }
  world.answers_quit(L"C:\\Suite\\KyTray.exe");
  return world;
}

struct Trial : CommandWorld {
  explicit Trial(const support::NamedWorld& layout = tray_world()) : CommandWorld(layout.state) {
    put("Suite", L"C:\\Suite\\");
  }
  host::CommandOwner close(const Attributes& attributes) {
    const auto before = world.handles().open_by_kind();
    host::CommandOwner command = run("CloseProcess", attributes);
    EXPECT_EQ(world.handles().open_by_kind(), before);
    system.threads.sleep(1);
    return command;
  }
  /// Who of those that ran at the start has ended, and when.
  std::wstring ended() {
    std::wstring text;
    for (const auto& each : world.state().ended) {
      if (each.kind == machine::EndKind::by_itself) continue;
      if (!text.empty()) text += L", ";
      if (each.kind == machine::EndKind::asked) text += L"asked ";
      if (each.kind == machine::EndKind::terminated) text += L"terminated ";
      text += std::to_wstring(each.id) + L" at " + std::to_wstring(each.when);
    }
    return text;
  }
};

const Attributes quit = {{"process", "KyTray"},
                         {"command", "[Suite]KyTray.exe"},
                         {"args", "/quit [Suite]"},
                         {"currentDir", "[Suite]"},
                         {"waitAmount", "1000"}};

TEST(CloseProcess, AsksTheFirstThatBeginsSoAndWaitsForIt) {
  Trial run;
  const auto command = run.close(quit);
  EXPECT_EQ(run.ended(), L"asked 1004 at 500");
  EXPECT_EQ(std::regex_replace(run.lines(), std::wregex(L"handle: \\d+"), L"handle: H"),
            L"5: CloseProcess Begin execute.\n"
            L"Process name: KyTray\n"
            L"Process = KyTray, pid = 1004\n"
            L"Process handle: H\n"
            L"Command with args:'\"C:\\Suite\\KyTray.exe\" /quit [Suite]'"
            L"RunCommand: \"C:\\Suite\\KyTray.exe\" /quit [Suite] in folder: C:\\Suite\\\n"
            L"WaitForSingleObject retVal 0"
            L"5: CloseProcess End execute. Next command 6.\n"
            L"Running command : success\n");
  EXPECT_FALSE(command->GuardHeld());
}

TEST(CloseProcess, EndsInItsOwnWordsWhateverItFinds) {
  const struct {
    const char* kind;
    const char* attribute;  // what differs from the usual
    const char* value;
    std::uint32_t refuses;
    const wchar_t* ended;
    const wchar_t* line;
    bool left;
  } rows[] = {
      {"a longer beginning", "process", "KyTraye", 0, L"asked 1004 at 500, terminated 1008 at 1000",
       L"The process: 'KyTraye' will be terminatedWaitForSingleObject retVal 2585: CloseProcess End execute.", true},
      {"another case", "process", "kytray", 0, L"",
       L"Process = kytray, pid = 0\nProcess:'kytray' is not running!\nRunning command : success\n", false},
      {"no command", "command", "", 0, L"terminated 1004 at 0", L"No command line. Process KyTray terminated = 1\n",
       true},
      {"a command that names an undefined variable", "command", "[Missing]quit.exe", 0, L"terminated 1004 at 1000",
       L"RunCommand: \"[Missing]quit.exe\" /quit [Suite] in folder: C:\\Suite\\\n", true},
      {"no arguments", "args", "", 0, L"terminated 1004 at 1000",
       L"Command without args:'\"C:\\Suite\\KyTray.exe\"'RunCommand: \"C:\\Suite\\KyTray.exe\" in folder:", true},
      {"no folder", "currentDir", "", 0, L"asked 1004 at 500", L" in folder: (NULL)\n", true},
      {"no time", "waitAmount", "0", 0, L"terminated 1004 at 0", L"WaitForSingleObject retVal 258", true},
      {"text instead of time", "waitAmount", "soon", 0, L"terminated 1004 at 0", L"WaitForSingleObject retVal 258",
       true},
      {"time in decimal alone", "waitAmount", "0x1000", 0, L"terminated 1004 at 0", L"WaitForSingleObject retVal 258",
       true},
      {"no limit", "waitAmount", "infinite", 0, L"asked 1004 at 500", L"WaitForSingleObject retVal 0", true},
      {"a process that may not be terminated", "waitAmount", "100", ports::process_access::terminate,
       L"asked 1004 at 500",
       L"Process handle: 0\nStep 1: PROCESS_TERMINATE | SYNCHRONIZE Last error: 5\nCommand with args:", true},
      {"a process that may not be opened", "waitAmount", "100",
       ports::process_access::terminate | ports::process_access::synchronize, L"",
       L"Step 1: PROCESS_TERMINATE | SYNCHRONIZE Last error: 5\nStep 2: SYNCHRONIZE Last error: 5\n"
       L"Cannot open process with pid 1004\nRunning command : failed\n",
       false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    support::NamedWorld layout = tray_world();
    layout.state.processes[0].temper.refuses = row.refuses;
    Trial run(layout);
    Attributes attributes = quit;
    for (auto& [name, value] : attributes) value = name == row.attribute ? row.value : value;
    const auto command = run.close(attributes);
    run.system.threads.sleep(600);
    EXPECT_EQ(run.ended(), row.ended);
    EXPECT_NE(run.lines().find(row.line), std::wstring::npos) << testing::PrintToString(run.lines());
    EXPECT_EQ(command->GuardHeld(), !row.left) << "an early end keeps the guard";
    EXPECT_EQ(command->executed, row.left);
  }
}

TEST(CloseProcess, WithoutANameKeepsTheGuardFromAllOtherThreads) {
  Trial run;
  const auto command = run.close({{"command", ""}, {"waitAmount", "1"}});
  EXPECT_EQ(run.lines(), L"5: CloseProcess Begin execute.\nProcess name is invalid (NULL)Running command : failed\n");
  run.log.clear();
  EXPECT_EQ(command->Execute(0, 0), 0u) << "the same thread enters again";
  run.log.clear();
  std::uint32_t result = 1;
  std::thread([&] { result = command->Execute(0, 0); }).join();
  EXPECT_EQ(result, 0u);
  EXPECT_EQ(run.lines(), L"5: CloseProcess Error: Multiple threads attempting execution.\nRunning command : failed\n");
  EXPECT_EQ(command->GetNextIndex(), 6);
  EXPECT_EQ(run.log.back(), L"[InstallCommand] Warning: GetNextIndex called before Execute\n");
}

TEST(CloseProcess, DoesNotLoadWithoutCommandOrTime) {
  Trial run;
  EXPECT_EQ(run.load("CloseProcess", {{"process", "a"}, {"waitAmount", "1"}}).result, 1u);
  EXPECT_EQ(run.load("CloseProcess", {{"process", "a"}, {"command", "b"}}).result, 1u);
  EXPECT_EQ(run.load("CloseProcess", {{"command", ""}, {"waitAmount", ""}}).result, 0u);
}

}  // namespace
}  // namespace ky
