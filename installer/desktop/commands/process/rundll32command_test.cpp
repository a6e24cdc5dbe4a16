#include "installer/desktop/commands/process/rundll32command.h"

#include <thread>

#include "platform/ports/codes.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

using Attributes = CommandWorld::Attributes;
using Lines = std::vector<std::wstring>;

const Attributes usual = {
    {"filePath", "[Suite]shell.dll"}, {"arguments", "\"[Suite]shell.dll\",Unregister /s"}, {"currentDir", "[Suite]"}};

/// A rundll32 that runs 500 ms and then writes a file.
struct Trial : CommandWorld {
  Trial() : CommandWorld(layout().state) { put("Suite", L"C:\\Suite\\"); }
  static support::NamedWorld layout() {
    support::NamedWorld world;
    world.file(L"C:\\Suite\\shell.dll").program(L"C:\\Windows\\System32\\rundll32.exe", 500, 1);
    machine::Effect effect;
    effect.kind = machine::EffectKind::write_file;
    effect.path = L"C:\\Suite\\unregistered";
    world.state.programs.back().effects = {effect};
    return world;
  }
  host::CommandOwner start(const Attributes& attributes) {
    const auto before = world.handles().open_by_kind();
    host::CommandOwner command = run("RunDll32", attributes);
    EXPECT_EQ(world.handles().open_by_kind(), before);
    return command;
  }
  bool ended() { return system.files.exists(L"C:\\Suite\\unregistered"); }
};

Attributes with(Attributes attributes, const char* name, const char* value) {
  for (auto& [each, text] : attributes) {
    if (each == name) text = value;
  }
  return attributes;
}

TEST(RunDll32, RunsTheArgumentsAsTheyAreGiven) {
  Trial run;
  Attributes attributes = usual;
  attributes.emplace_back("waitAmount", "infinite");
  const auto command = run.start(attributes);
  EXPECT_EQ(run.log, (Lines{L"5: RunDll32 Begin execute.\n", L"[RunDll32] File path = 'C:\\Suite\\shell.dll'\n",
                            L"[RunDll32] Current directory = 'C:\\Suite\\'\n",
                            L"[RunDll32] Arguments = '\"C:\\Suite\\shell.dll\",Unregister /s'\n",
                            L"[RunDll32] Command = 'rundll32.exe \"C:\\Suite\\shell.dll\",Unregister /s'\n",
                            L"[RunDll32] RunCommand succeeded\n", L"5: RunDll32 End execute. Next command 6.\n"}));
  EXPECT_TRUE(run.ended());
  EXPECT_TRUE(command->executed);
  EXPECT_FALSE(command->GuardHeld());
  run.put("Suite", L"C:\\Elsewhere\\");
  run.log.clear();
  EXPECT_EQ(command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log.at(1), L"[RunDll32] File path = 'C:\\Suite\\shell.dll'\n") << "the expansion is kept";
}

TEST(RunDll32, WaitsAsLongAsItIsTold) {
  const struct {
    const char* wait;  // null: absent
    std::uint32_t took;
  } rows[] = {{nullptr, 0},  {"abc", 0},  {"0x1F4", 0},      {"100", 100},
              {"1000", 500}, {"-1", 500}, {"INFINITE", 500}, {"Infinite", 500}};
  for (const auto& row : rows) {
    Trial run;
    Attributes attributes = usual;
    if (row.wait != nullptr) attributes.emplace_back("waitAmount", row.wait);
    const std::uint32_t start = run.system.clock.ticks();
    run.start(attributes);
    EXPECT_EQ(run.system.clock.ticks() - start, row.took) << row.took;
    EXPECT_EQ(run.log.at(5), L"[RunDll32] RunCommand succeeded\n") << "a time-out is not told";
    EXPECT_EQ(run.ended(), row.took == 500);
  }
}

TEST(RunDll32, AFailedCheckIsOneLineAndNothingStarts) {
  const struct {
    const char* attribute;
    const char* value;
    const wchar_t* line;
  } rows[] = {
      {"currentDir", "C:\\Suite\\shell.dll", L"[RunDll32] 'C:\\Suite\\shell.dll' is not a valid directory\n"},
      {"currentDir", "", L"[RunDll32] '' is not a valid directory\n"},
      {"currentDir", "[None]", L"[RunDll32] '[None]' is not a valid directory\n"},
      {"filePath", "C:\\Suite\\gone.dll", L"[RunDll32] 'C:\\Suite\\gone.dll' is not a valid file path\n"},
      {"filePath", "", L"[RunDll32] '' is not a valid file path\n"},
  };
  for (const auto& row : rows) {
    Trial run;
    const auto command = run.start(with(usual, row.attribute, row.value));
    ASSERT_EQ(run.log.size(), 6u) << row.value;
    EXPECT_EQ(run.log.at(4), row.line);
    EXPECT_TRUE(command->executed);
    EXPECT_EQ(run.faulty.calls(faults::Operation::processes_create), 0u);
  }
}

TEST(RunDll32, AProgramThatDoesNotStartIsTold) {
  Trial run;
  run.faulty.fail(faults::Operation::processes_create, 1, false, ports::code::access_denied);
  run.start(usual);
  EXPECT_EQ(run.log.at(5), L"[RunDll32] RunCommand failed\n");
  EXPECT_EQ(run.log.size(), 7u);
}

TEST(RunDll32, ASecondThreadExpandsAndEndsWithoutAWordOfItsOwn) {
  Trial run;
  const auto loaded = run.load("RunDll32", usual);
  std::uint32_t result = 1;
  // Behind the guard: the moment for another thread.
  run.kept->on_line = [&] {
    if (run.log.size() == 2) std::thread([&] { result = loaded.command->Execute(0, 0); }).join();
  };
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(result, 0u);
  EXPECT_EQ(Lines(run.log.begin() + 2, run.log.begin() + 8),
            (Lines{L"5: RunDll32 Begin execute.\n", L"[RunDll32] File path = 'C:\\Suite\\shell.dll'\n",
                   L"[RunDll32] Current directory = 'C:\\Suite\\'\n",
                   L"[RunDll32] Arguments = '\"C:\\Suite\\shell.dll\",Unregister /s'\n",
                   L"[InstallCommand] Warning: GetNextIndex called before Execute\n",
                   L"5: RunDll32 End execute. Next command 6.\n"}));
  EXPECT_EQ(run.faulty.calls(faults::Operation::processes_create), 1u);
}

TEST(RunDll32, DoesNotLoadWithoutFileArgumentsAndFolder) {
  Trial run;
  for (std::size_t missing = 0; missing < usual.size(); ++missing) {
    Attributes attributes = usual;
    attributes.erase(attributes.begin() + static_cast<std::ptrdiff_t>(missing));
    EXPECT_EQ(run.load("RunDll32", attributes).result, 1u) << usual[missing].first;
  }
  const auto loaded = run.load("RunDll32", {{"currentDir", "C:\\Suite"}});
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log.at(4), L"[RunDll32] The file path is NULL\n");
}

}  // namespace
}  // namespace ky
