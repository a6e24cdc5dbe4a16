#include "installer/desktop/commands/process/closeprocesses.h"

#include <algorithm>
#include <functional>
#include <regex>
#include <system_error>

#include "tests/support/close_targets.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

using machine::EndKind;
using machine::GivesWay;
using machine::RunningProgram;
using TargetList = support::CloseTargets;
using support::NamedWorld;

constexpr wchar_t agent[] = L"C:\\Suite\\agent.exe";

/// One run of the command on a machine.
struct Trial : CommandWorld {
  explicit Trial(const NamedWorld& layout) : CommandWorld(layout.state) {}

  std::uint32_t close(const Attributes& attributes) {
    const Loaded loaded = load("CloseProcesses", attributes);
    EXPECT_EQ(loaded.result, 0u);
    return close(*loaded.command);
  }
  std::uint32_t close(CInstallCommand& command) {
    const std::size_t before = open_processes();
    const std::uint32_t result = command.Execute(0, 0);
    const auto waited_for = std::count_if(log.begin(), log.end(), [](const std::wstring& line) {
      return line.find(L"', pid=") != line.npos && line.find(L"handle=0000000000000000,") == line.npos;
    });
    EXPECT_EQ(open_processes() - before, static_cast<std::size_t>(waited_for)) << "only what is waited for stays open";
    EXPECT_EQ(world.state().enabled_privileges.count(machine::privilege::debug), 0u);
    EXPECT_FALSE(command.GuardHeld());
    EXPECT_TRUE(command.executed);
    system.threads.sleep(1);  // a terminated process goes at once, but not before somebody waits
    return result;
  }
  std::size_t open_processes() {
    const auto open = world.handles().open_by_kind();
    EXPECT_EQ(open.count(machine::ObjectKind::process_list) + open.count(machine::ObjectKind::token), 0u);
    EXPECT_EQ(open.count(machine::ObjectKind::file), 0u);
    const auto found = open.find(machine::ObjectKind::process);
    return found == open.end() ? 0 : found->second;
  }

  /// "asked ui.exe at 500, ...": who ended of those that did not start in the run.
  std::wstring ended() {
    std::wstring text;
    for (const machine::EndedProcess& each : world.state().ended) {
      if (each.kind != EndKind::asked && each.kind != EndKind::terminated) continue;
      text += std::wstring(text.empty() ? L"" : L", ") + (each.kind == EndKind::asked ? L"asked " : L"terminated ") +
              each.image + L" at " + std::to_wstring(each.when);
    }
    return text;
  }
  /// The log as it stands, but for handles and the last error beside them, which is anything after success.
  std::wstring lines() const {
    std::wstring all = CommandWorld::lines();
    all = std::regex_replace(all, std::wregex(L"handle=(?!0{16})[0-9A-F]{16}, error=[0-9a-f]+"), L"handle=H, error=E");
    return std::regex_replace(all, std::wregex(L"handle=[0-9A-F]{16}\n"), L"handle=H\n");
  }
  bool says(const std::wstring& text) const { return lines().find(text) != std::wstring::npos; }
};

using Attributes = CommandWorld::Attributes;

Attributes one_target(const std::string& process = "agent.exe", const std::string& folder = "C:\\Suite\\") {
  return TargetList("1000").add(process, "", folder).all();
}

enum class Fate { closed, stranger, unseen, unreadable };

TEST(CloseProcesses, OnlyThoseThatRunTheVeryFileEnd) {
  constexpr wchar_t equally_long[] = L"C:\\Other\\agent.exe", elsewhere[] = L"C:\\Elsewhere\\agent.exe";
  using LayOut = std::function<void(NamedWorld&)>;
  using Tweak = std::function<void(NamedWorld&, RunningProgram&)>;
  const auto hard_link_in = [](const wchar_t* folder) -> LayOut {
    return [folder](NamedWorld& w) {
      w.folder(folder);
      machine::add_name(w.state.files, w.id_of(agent), {w.id_of(folder), L"agent.exe"});
    };
  };
  const auto a_link_to = [](const wchar_t* target) -> LayOut {
    return [target](NamedWorld& w) {
      w.node(agent).link = machine::LinkKind::symbolic;
      w.node(agent).target = target;
    };
  };
  const LayOut substituted = [](NamedWorld& w) { w.state.files.substitutes[L"S:"] = L"C:\\Suite"; };
  const LayOut cased = [](NamedWorld& w) { machine::set_case_sensitive(w.node(L"C:\\Suite"), true); };
  const Tweak shown_as_agent = [](NamedWorld&, RunningProgram& process) { process.name = L"agent.exe"; };
  const auto another = [&](GivesWay moment) -> Tweak {
    return [&, moment](NamedWorld& w, RunningProgram& process) {
      process.gives_way = moment;
      process.successor.emplace_back().image = equally_long;
      w.file(equally_long, "MZ");
    };
  };
  const LayOut plain = nullptr;
  const Tweak none = nullptr;
  const struct {
    const char* kind;
    Fate fate;
    const wchar_t* runs;
    LayOut lay_out = nullptr;
    Tweak tweak = nullptr;
    const char* folder = "C:\\Suite\\";
    const char* process = "agent.exe";
  } rows[] = {
      {"the file itself", Fate::closed, agent},
      {"the same name in a folder of another length", Fate::stranger, elsewhere},
      {"a copy in a folder of equal length", Fate::stranger, equally_long},
      {"a name that only begins alike", Fate::unseen, L"C:\\Suite\\agent.exe.exe"},
      {"a hard link in a folder of equal length, which is the very file by another name", Fate::closed, equally_long,
       hard_link_in(L"C:\\Other")},
      {"a hard link in a folder of another length", Fate::stranger, L"C:\\Further\\agent.exe",
       hard_link_in(L"C:\\Further")},
      {"a folder told by its short name", Fate::stranger, L"C:\\Suite Tools\\agent.exe",
       [](NamedWorld& w) { w.node(L"C:\\").short_names[L"SUITET~1"] = L"Suite Tools"; }, none, "C:\\SUITET~1\\"},
      {"a process that shows a short name", Fate::stranger, L"C:\\Suite\\AGENT~1.EXE",
       [](NamedWorld& w) { w.node(L"C:\\Suite").short_names[L"AGENT~1.EXE"] = L"agent.exe"; }, shown_as_agent},
      {"a drive that stands for the folder, in the script", Fate::stranger, agent, substituted, none, "S:\\"},
      {"a drive that stands for the folder, at the process", Fate::stranger, L"S:\\agent.exe", substituted},
      {"another case at the process", Fate::closed, L"C:\\SUITE\\AGENT.EXE"},
      {"another case in the script", Fate::closed, agent, plain, none, "c:\\SUITE\\", "AGENT.exe"},
      {"in a folder that tells case apart, the very name", Fate::closed, agent, cased},
      {"in a folder that tells case apart, a file of another case", Fate::stranger, L"C:\\Suite\\AGENT.exe", cased},
      {"in a folder that tells case apart, a name with capitals", Fate::closed, L"C:\\Suite\\Agent.exe", cased, none,
       "C:\\Suite\\", "Agent.exe"},
      {"trailing dots in the script's folder", Fate::stranger, agent, plain, none, "C:\\Suite.\\"},
      {"a trailing blank at the process", Fate::stranger, L"C:\\Suite\\agent.exe ", plain, shown_as_agent},
      {"no backslash behind the folder", Fate::stranger, agent, plain, none, "C:\\Suite"},
      {"an id that went to another program before the path was read", Fate::stranger, agent, plain,
       another(GivesWay::after_snapshot)},
      {"an id that went to another program after the path was read", Fate::stranger, agent, plain,
       another(GivesWay::after_image_path)},
      {"a path that cannot be read", Fate::unreadable, agent, plain,
       [](NamedWorld&, RunningProgram& process) { process.temper.image_unreadable = true; }},
      {"a path of 32,000 characters", Fate::stranger, agent, plain,
       [](NamedWorld&, RunningProgram& process) {
         process.image = L"C:\\" + std::wstring(31'987, L'x') + L"\\agent.exe";
       }},
      {"a link in the file's place, for what ran from there before", Fate::closed, agent, a_link_to(elsewhere)},
      {"a link in the file's place, for what it leads to", Fate::stranger, elsewhere, a_link_to(elsewhere)},
      {"a link in the file's place, for what it leads to by a path of equal length, which the script then names",
       Fate::closed, equally_long, a_link_to(equally_long)},
      {"a link in the file's place that leads nowhere", Fate::stranger, equally_long,
       a_link_to(L"C:\\Nowhere\\agent.exe")},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    NamedWorld layout;
    layout.file(agent, "MZ").file(elsewhere, "MZ");
    if (row.lay_out) row.lay_out(layout);
    RunningProgram& process = layout.process(row.runs);
    if (row.tweak) row.tweak(layout, process);
    Trial run(layout);
    EXPECT_EQ(run.close(one_target(row.process, row.folder)), 0u);
    EXPECT_EQ(run.ended().empty(), row.fate != Fate::closed) << testing::PrintToString(run.lines());
    EXPECT_EQ(run.says(L"has same name but is not recognized"), row.fate == Fate::stranger)
        << testing::PrintToString(run.lines());
    EXPECT_EQ(run.says(L"could not get more details"), row.fate == Fate::unreadable);
  }
}

TEST(CloseProcesses, EachProcessTakesTheTargetOfItsOwnFolder) {
  NamedWorld layout;
  for (const wchar_t* path : {L"C:\\One\\agent.exe", L"C:\\Two\\agent.exe", L"C:\\Six\\agent.exe"})
    layout.process(path);
  layout.answers_quit(L"C:\\Two\\agent.exe");
  Trial run(layout);
  EXPECT_EQ(run.close(TargetList("0x64")
                          .add("agent.exe", "", "C:\\One\\")
                          .add("AGENT.EXE", "\"C:\\Two\\agent.exe\" /quit", "C:\\Two\\")
                          .all()),
            0u);
  EXPECT_EQ(run.ended(), L"asked C:\\Two\\agent.exe at 0, terminated C:\\One\\agent.exe at 100");
}

TEST(CloseProcesses, AskAllAtOnceAndTerminateWhatIsLeft) {
  NamedWorld layout;
  layout.file(L"C:\\Suite\\kyquit.exe", "MZ");
  const std::wstring suite = L"C:\\Suite\\";
  std::uint32_t id = 1000;
  for (const wchar_t* name : {L"ui.exe", L"tray.exe", L"hangs.exe", L"silent.exe", L"shut.exe"}) {
    layout.process(suite + name, id += 4);
    layout.answers_quit(suite + name);
  }
  layout.state.processes[0].temper.closes_after = 500;
  layout.state.processes[1].temper.closes_after = 900;
  layout.state.processes[2].temper.hangs = true;
  layout.state.processes[4].temper.refuses = ports::process_access::terminate;
  Trial run(layout);
  run.put("Suite", L"C:\\Suite\\");
  EXPECT_EQ(run.close(TargetList("1000")
                          .add("ui.exe", "[Suite]ui.exe /quit", "[Suite]")
                          .add("Tray.exe", "/quit", "[Suite]")
                          .add("hangs.exe", "C:\\Suite\\hangs.exe /quit", "[Suite]")
                          .add("silent.exe", "", "[Suite]")
                          .add("lost.exe", "[Missing] /quit", "[Suite]")
                          .add("shut.exe", "C:\\Suite\\shut.exe /quit", "[Suite]")
                          .with("limited2", "1")
                          .with("next", "9")
                          .all()),
            0u);
  EXPECT_EQ(
      run.ended(),
      L"asked C:\\Suite\\shut.exe at 0, asked C:\\Suite\\ui.exe at 500, asked C:\\Suite\\tray.exe at 900, terminated "
      L"C:\\Suite\\hangs.exe at 1000, terminated C:\\Suite\\silent.exe at 1000");
  EXPECT_EQ(run.lines(),
            L"5: CloseProcesses Begin execute.\n"
            L"5: process='lost.exe'|'C:\\Suite\\'|'[Missing] /quit' contains a variable that could not be expanded\n"
            L"5: processes to stop:\n"
            L"5: process='ui.exe', dir='C:\\Suite\\', cmd='C:\\Suite\\ui.exe /quit', limited=false\n"
            L"5: process='tray.exe', dir='C:\\Suite\\', cmd='/quit', limited=true\n"
            L"5: process='hangs.exe', dir='C:\\Suite\\', cmd='C:\\Suite\\hangs.exe /quit', limited=false\n"
            L"5: process='silent.exe', dir='C:\\Suite\\', cmd='', limited=false\n"
            L"5: process='shut.exe', dir='C:\\Suite\\', cmd='C:\\Suite\\shut.exe /quit', limited=false\n"
            L"5: set privilege SE_DEBUG_NAME=true\n"
            L"5: start close processes. running processes after filtering=5\n"
            L"5: process='ui.exe', pid=1004, handle=H, error=E\n"
            L"5: process='tray.exe', pid=1008, handle=H, error=E\n"
            L"5: process='hangs.exe', pid=1012, handle=H, error=E\n"
            L"5: process='silent.exe', pid=1016, handle=H, error=E\n"
            L"5: process='silent.exe', doesn't have a command line - the process will be terminated after the timeout "
            L"expires.\n"
            L"5: process='shut.exe', pid=1020, handle=0000000000000000, error=5\n"
            L"5: waiting for 4 processes to stop. max_timeout=1000ms\n"
            L"5: terminate process with handle=H\n"
            L"5: terminate process with handle=H\n"
            L"5: end close processes\n"
            L"5: CloseProcesses End execute. Next command 9\n");
}

TEST(CloseProcesses, WaitNoLongerThanTheSlowestAndNotAtAllForNoneOrTooMany) {
  for (const std::size_t count : {0u, 1u, 12u, 64u, 65u}) {
    SCOPED_TRACE(count);
    NamedWorld layout;
    layout.file(agent, "MZ").answers_quit(agent);
    for (std::uint32_t i = 0; i < count; ++i) layout.process(agent).temper.closes_after = 100 * (i + 1);
    Trial run(layout);
    const std::uint32_t began = run.system.clock.ticks();
    Attributes attributes = one_target();
    attributes[0].second = "-1";
    attributes[2].second = "C:\\Suite\\agent.exe /quit";
    EXPECT_EQ(run.close(attributes), 0u);
    const bool waits = count > 0 && count <= 64;
    EXPECT_EQ(run.system.clock.ticks() - began, (waits ? 100 * count : 0) + 1);
    EXPECT_EQ(run.says(L"all processes were closed correctly"), waits);
    EXPECT_EQ(run.says(L"terminate process with handle=H"), count == 65);
    EXPECT_TRUE(run.says(L"5: waiting for " + std::to_wstring(count) + L" processes to stop. max_timeout=-1ms\n"));
  }
}

TEST(CloseProcesses, TakeAProcessThatEndsBetweenTwoCallsAsItComes) {
  const struct {
    GivesWay when;
    const wchar_t* line;
  } rows[] = {
      {GivesWay::after_snapshot,
       L"5: could not get more details about process=agent.exe, pid=1004, error=87. this process will be skipped.\n"},
      {GivesWay::after_image_path, L"5: process='agent.exe', pid=1004, handle=0000000000000000, error=57\n"},
  };
  for (const auto& row : rows) {
    NamedWorld layout;
    layout.process(agent, 1004).gives_way = row.when;
    Trial run(layout);
    EXPECT_EQ(run.close(one_target()), 0u);
    EXPECT_TRUE(run.says(row.line)) << testing::PrintToString(run.lines());
    EXPECT_TRUE(run.says(L"5: waiting for 0 processes to stop. max_timeout=1000ms\n5: end close processes\n"));
  }
}

TEST(CloseProcesses, FailedCallsSpareProcessesAndLeakNothing) {
  using faults::Operation;
  NamedWorld layout;
  layout.process(agent, 1004);
  const struct {
    Operation operation;
    std::uint64_t call;
    ports::ErrorCode code;
    const wchar_t* line;
  } rows[] = {
      {Operation::tokens_open_own, 1, 5, L"SE_DEBUG_NAME=false\n"},
      {Operation::inspection_open, 2, 31, L"handle=0000000000000000, error=1f\n"},
      {Operation::inspection_image_path, 1, 6, L"pid=1004, error=6. this process will be skipped.\n"},
      {Operation::inspection_image_path, 2, 6, L"process=agent.exe, path='' has same name but is not recognized."},
      {Operation::files_identity, 1, 6, L"path='C:\\Suite\\agent.exe' has same name but is not recognized."},
      {Operation::files_identity, 4, 6, L"path='C:\\Suite\\agent.exe' has same name but is not recognized."},
      {Operation::processes_terminate, 1, 5, L"terminate process with handle="},
  };
  for (const auto& row : rows) {
    Trial run(layout);
    run.faulty.fail(row.operation, row.call, false, row.code);
    EXPECT_EQ(run.close(one_target()), 0u);
    EXPECT_EQ(run.faulty.failed(row.operation), 1u) << row.line;
    EXPECT_TRUE(run.says(row.line)) << testing::PrintToString(run.lines());
    EXPECT_EQ(run.ended().empty(), row.operation != Operation::tokens_open_own) << testing::PrintToString(run.lines());
  }
}

TEST(CloseProcesses, EndInOrderWhenTheSnapshotFails) {
  Trial run{NamedWorld()};
  run.faulty.fail(faults::Operation::inspection_snapshot, 1, false, 5);
  const auto loaded = run.load("CloseProcesses", one_target());
  try {
    (void)run.close(*loaded.command);
    ADD_FAILURE() << "no exception";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), 5);
  }
  EXPECT_TRUE(loaded.command->executed);
  EXPECT_FALSE(loaded.command->GuardHeld());
  EXPECT_EQ(run.world.state().enabled_privileges.count(machine::privilege::debug), 0u);
  EXPECT_EQ(run.open_processes(), 0u);
  EXPECT_EQ(run.log.back(), L"5: CloseProcesses End execute. Next command 6\n");
}

TEST(CloseProcesses, LoadWhatIsWholeAndHasANumberWithinTheCount) {
  const Attributes whole = {{"process1", "a"}, {"cmd1", "b"}, {"currentDir1", "c"}};
  const auto with = [&](Attributes more) {
    more.insert(more.end(), whole.begin(), whole.end());
    return more;
  };
  const struct {
    Attributes attributes;
    const wchar_t* keys;
  } rows[] = {
      {whole, L""},
      {with({{"maxTimeout", "5"}}), L"a"},
      {{{"maxTimeout", "5"}, {"process1", "a"}, {"cmd1", ""}}, L""},
      {with({{"maxTimeout", "5"}, {"process2", "d"}, {"cmd2", "e"}, {"currentDir2", "f"}}), L"ad"},
      {with({{"maxTimeout", "5"}, {"process2", "d"}, {"currentDir2", "f"}}), L"a"},
      {with({{"maxTimeout", "5"}, {"process3", "d"}, {"cmd3", "e"}, {"currentDir3", "f"}}), L"a"},
      {with({{"maxTimeout", "5"},
             {"process3", "d"},
             {"cmd3", "e"},
             {"currentDir3", "f"},
             {"next", "1"},
             {"errVar", "E"},
             {"limited3", "2"}}),
       L"ad*"},
  };
  for (const auto& row : rows) {
    Trial run{NamedWorld()};
    EXPECT_EQ(run.close(row.attributes), 0u);
    std::wstring keys;
    for (const std::wstring& line : run.log) {
      if (line.find(L"', dir='") == line.npos) continue;
      keys += line.substr(12, 1) + (line.find(L"limited=true") == line.npos ? L"" : L"*");
    }
    EXPECT_EQ(keys, row.keys);
  }
}

TEST(CloseProcesses, ASecondRunHasEachTargetOnceMore) {
  Trial run{NamedWorld()};
  const auto loaded = run.load("CloseProcesses", one_target());
  EXPECT_EQ(run.close(*loaded.command), 0u);
  EXPECT_EQ(run.close(*loaded.command), 0u);
  EXPECT_EQ(
      std::count(run.log.begin(), run.log.end(), L"5: process='agent.exe', dir='C:\\Suite\\', cmd='', limited=false\n"),
      3);
}

}  // namespace
}  // namespace ky
