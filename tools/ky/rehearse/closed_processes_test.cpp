#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/script/script_key.h"
#include "platform/ports/build.h"
#include "platform/ports/codes.h"
#include "platform/ports/inspection.h"
#include "tests/support/named_world.h"
#include "tests/support/script_text.h"
#include "tools/ky/rehearse/script_run.h"

// What a run tells of the processes that it met.
namespace rehearsal {
namespace {

namespace right = ports::process_access;
using machine::RunningProgram;
using support::Attributes;
using support::NamedWorld;

RunningProgram& runs(NamedWorld& world, const std::wstring& path) {
  const auto parsed = machine::parse_path(path, L"C:\\").path;
  if (machine::look_up(world.state.files, parsed, machine::LastLink::itself).node == 0) world.file(path, "MZ");
  world.state.processes.emplace_back().image = path;
  return world.state.processes.back();
}

/// Runs the commands on the world, in their order.
Outcome outcome_of(const NamedWorld& world, const std::vector<std::pair<std::string, Attributes>>& commands) {
  const auto machine = world.make();
  const auto engines = ports::make_engines(machine->errors());
  support::ScriptText script(engines->cipher());
  for (const auto& [name, attributes] : commands) script.add(name, attributes);
  ScriptRun run(machine->system(*engines));
  const auto faults = run.prepare(script.text(), host::built_in_script_key(), {});
  EXPECT_TRUE(faults.empty()) << faults.front();
  return run.run({});
}

/// "path: fate code", one a line.
std::string told(const Outcome& outcome) {
  static constexpr const char* words[] = {"closed", "terminated", "not ours", "unreadable", "not opened", "still runs"};
  std::string text;
  for (const record::SeenProcess& process : outcome.processes) {
    const ProcessEnd end = end_of(process);
    const std::wstring& called = process.path.empty() ? process.name : process.path;
    text += std::string(called.begin(), called.end()) + ": " + words[static_cast<std::size_t>(end.fate)];
    text += (end.code == 0 ? "" : " " + std::to_string(end.code)) + "\n";
  }
  return text;
}

const Attributes list = {{"maxTimeout", "1000"},
                         {"process1", "ui.exe"},
                         {"cmd1", "\"C:\\Suite\\ui.exe\" /quit"},
                         {"currentDir1", "C:\\Suite\\"}};

/// `ui.exe` in the suite's folder asks all of its name to close when it is started with "/quit".
NamedWorld suite() {
  NamedWorld world;
  world.file(L"C:\\Suite\\ui.exe", "MZ");
  world.state.programs.push_back({L"C:\\Suite\\ui.exe",
                                  L"/quit",
                                  0,
                                  false,
                                  0,
                                  false,
                                  false,
                                  {},
                                  {{machine::EffectKind::ask_to_close, L"ui.exe", {}, {}, {}}}});
  return world;
}

TEST(ClosedProcesses, EachTellsHowItEndedOrWhyItWasLeftAlone) {
  NamedWorld world = suite();
  runs(world, L"C:\\Suite\\ui.exe");
  runs(world, L"C:\\Suite\\ui.exe").temper.hangs = true;
  runs(world, L"C:\\Other\\ui.exe");
  runs(world, L"C:\\Suite\\ui.exe").temper.image_unreadable = true;
  RunningProgram& shut = runs(world, L"C:\\Suite\\ui.exe");
  shut.temper.refuses = right::terminate;
  shut.temper.hangs = true;
  runs(world, L"C:\\Suite\\ui.exe").temper.refuses = right::synchronize;  // and closes
  RunningProgram& recycled = runs(world, L"C:\\Suite\\ui.exe");
  recycled.gives_way = machine::GivesWay::after_image_path;
  recycled.successor.emplace_back().image = L"C:\\Elsewhere\\ui.exe";
  runs(world, L"C:\\Suite\\notes.exe");
  EXPECT_EQ(told(outcome_of(world, {{"CloseProcesses", list}})),
            "C:\\Suite\\ui.exe: closed\n"
            "C:\\Suite\\ui.exe: terminated\n"
            "C:\\Other\\ui.exe: not ours\n"
            "ui.exe: unreadable 5\n"
            "C:\\Suite\\ui.exe: not opened 5\n"
            "C:\\Suite\\ui.exe: closed\n"
            "C:\\Elsewhere\\ui.exe: not ours\n");
}

TEST(ClosedProcesses, OneThatIsFoundByItsNameIsToldByItsName) {
  const auto close = [](const RunningProgram& process, const std::string& command) {
    NamedWorld world = suite();
    runs(world, process.image).temper = process.temper;
    return told(outcome_of(
        world,
        {{"CloseProcess", {{"process", "ui"}, {"command", command}, {"args", "/quit"}, {"waitAmount", "100"}}}}));
  };
  const std::string ask = "C:\\Suite\\ui.exe";
  RunningProgram process;
  process.image = L"C:\\Other\\ui.exe";
  EXPECT_EQ(close(process, ask), "ui.exe: closed\n");
  EXPECT_EQ(close(process, ""), "ui.exe: terminated\n");
  process.temper.hangs = true;
  EXPECT_EQ(close(process, ask), "ui.exe: terminated\n");
  process.temper.refuses = right::terminate;
  EXPECT_EQ(close(process, ask), "ui.exe: still runs 5\n");
  EXPECT_EQ(close(process, ""), "ui.exe: still runs 5\n");
  process.temper.refuses = right::terminate | right::synchronize;
  EXPECT_EQ(close(process, ask), "ui.exe: not opened 5\n");
}

TEST(ClosedProcesses, ALaterCommandSaysMoreOfTheSameProcessAndTheParentIsNone) {
  NamedWorld world = suite();
  runs(world, L"C:\\Other\\ui.exe").temper.hangs = true;
  RunningProgram parent;
  parent.image = L"C:\\Other\\bundle.exe";
  parent.temper.refuses = right::query_information;
  world.state.environment.parent = parent;
  const Attributes straggler = {{"process", "ui"}, {"command", ""}, {"waitAmount", "100"}};
  const Outcome outcome =
      outcome_of(world, {{"CloseProcesses", list}, {"CloseProcess", straggler}, {"CommandLineParser", {}}});
  EXPECT_EQ(told(outcome), "C:\\Other\\ui.exe: terminated\n");
  ASSERT_FALSE(outcome.actions.empty());
  EXPECT_EQ(outcome.actions.back(), (record::Action{"process-ended", L"C:\\Other\\ui.exe"}));
}

}  // namespace
}  // namespace rehearsal
