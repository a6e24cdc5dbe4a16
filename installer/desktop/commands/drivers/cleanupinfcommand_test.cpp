#include "installer/desktop/commands/drivers/cleanupinfcommand.h"

#include <stdexcept>

#include "installer/desktop/commands/drivers/inf_packages.h"
#include "installer/utils/base/fs/filesystem_error.h"
#include "platform/ports/codes.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

namespace code = ports::code;
using faults::Operation;
using support::NamedWorld;
using Lines = std::vector<std::wstring>;

constexpr wchar_t store[] = L"C:\\Windows\\System32\\DriverStore\\FileRepository\\";
constexpr wchar_t begin[] = L"5: CleanupINF Begin execute.\n";
constexpr wchar_t end[] = L"5: CleanupINF End execute. Next command 6.\n";

TEST(InfPackages, ACandidateBeginsWithOemAndHoldsOneOfFourCharactersAnywhere) {
  for (const wchar_t* name : {L"oem12.inf", L"oem.", L"oemi", L"oem12.pnf", L"oemn1", L"oem1f2"}) {
    EXPECT_TRUE(MayBeAssignedInf(name)) << name;
  }
  for (const wchar_t* name : {L"", L"oem", L"oem12", L"disk.inf", L"xoem1.inf", L"OEM1.inf"}) {
    EXPECT_FALSE(MayBeAssignedInf(name)) << name;
  }
}

TEST(InfPackages, ACommandLineHasToFitWithItsTerminator) {
  EXPECT_EQ(PnputilLine(L"C:\\Windows\\System32\\", L"oem1.inf"),
            L"\"C:\\Windows\\System32\\pnputil.exe\" -d oem1.inf");
  EXPECT_TRUE(FitsPnputil(std::wstring(259, L'x')));
  EXPECT_FALSE(FitsPnputil(std::wstring(260, L'x')));
  for (const auto& [path, name] : {std::pair{L"C:\\a\\b.inf", L"b.inf"}, {L"b.inf", L"b.inf"}, {L"C:\\a\\", L""}}) {
    EXPECT_EQ(FileNameOf(path), name);
  }
}

/// Drivers beside each other, of which two names stand for the suite's filter, and a pnputil that runs 400 ms.
struct DriverWorld : NamedWorld {
  DriverWorld() {
    assigned(L"oem1.INF", L"kyflt.inf_amd64_1\\KyFlt.inf");
    assigned(L"oem2.inf", L"other.inf_amd64_1\\other.inf");
    assigned(L"oem3.inf", L"kyflt.inf_amd64_2\\kyflt.inf");
    file(L"C:\\Windows\\INF\\oem3.pnf").file(L"C:\\Windows\\INF\\disk.inf").folder(L"C:\\Windows\\INF\\oem4.inf");
    program(L"C:\\Windows\\System32\\pnputil.exe", 400, 1);
    machine::Effect effect;
    effect.kind = machine::EffectKind::remove_driver;
    state.programs.back().effects = {effect};
  }
  void assigned(const std::wstring& name, const std::wstring& in_store) {
    file(store + in_store).file(L"C:\\Windows\\INF\\" + name);
    node(L"C:\\Windows\\INF\\" + name).store = store + in_store;
  }
};

struct Trial : CommandWorld {
  explicit Trial(const DriverWorld& layout = {}) : CommandWorld(layout.state) {}
  host::CommandOwner clean(const char* driver = "KYFLT.inf") {
    const auto before = world.handles().open_by_kind();
    host::CommandOwner command = run("CleanupINF", {{"driverName", driver}});
    EXPECT_TRUE(command->executed);
    EXPECT_FALSE(command->GuardHeld());
    EXPECT_EQ(world.handles().open_by_kind(), before);
    return command;
  }
  bool there(const wchar_t* name) { return system.files.exists((std::wstring(L"C:\\Windows\\INF\\") + name).c_str()); }
};

TEST(CleanupINF, EveryNameOfThePackageGoesOneAfterAnother) {
  Trial run;
  const std::uint32_t start = run.system.clock.ticks();
  const auto command = run.clean();
  EXPECT_EQ(run.log,
            (Lines{begin, L"INF: 'kyflt.inf' is 'oem1.inf'\n",
                   L"execute: '\"C:\\Windows\\System32\\pnputil.exe\" -d oem1.inf'\n", L"execute status = 1\n",
                   L"INF: 'kyflt.inf' is 'oem3.inf'\n",
                   L"execute: '\"C:\\Windows\\System32\\pnputil.exe\" -d oem3.inf'\n", L"execute status = 1\n", end}));
  EXPECT_EQ(run.system.clock.ticks() - start, 800u);
  EXPECT_FALSE(run.there(L"oem1.inf") || run.there(L"oem3.inf"));
  EXPECT_TRUE(run.there(L"oem2.inf"));
  run.log.clear();
  EXPECT_EQ(command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log, (Lines{begin, end}));
}

TEST(CleanupINF, WhatDoesNotMatchIsPassedOverInSilence) {
  for (const char* driver : {"", "kyflt", "kyflt.inf_amd64_1\\kyflt.inf", "disk.inf", "oem1.inf"}) {
    Trial run;
    run.clean(driver);
    EXPECT_EQ(run.log, (Lines{begin, end})) << driver;
    EXPECT_EQ(run.faulty.calls(Operation::drivers_inf_location), 4u) << "files that begin with oem alone";
  }
}

TEST(CleanupINF, AFailureOfOneNameLeavesTheOthers) {
  const struct {
    const char* kind;
    Operation operation;
    std::uint64_t call;
    std::size_t lines;
    const wchar_t* line;  // behind the begin line, or behind two more
    bool first_left;
    bool second_left;
  } rows[] = {
      {"an INF that the system does not know", Operation::drivers_inf_location, 1, 5,
       L"INF: 'kyflt.inf' is 'oem3.inf'\n", true, false},
      {"pnputil does not start", Operation::processes_create, 1, 8, L"INF: 'kyflt.inf' is 'oem1.inf'\n", true, false},
      {"a wait that fails", Operation::waits_wait, 1, 8, L"INF: 'kyflt.inf' is 'oem1.inf'\n", false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    Trial run;
    run.faulty.fail(row.operation, run.faulty.calls(row.operation) + row.call, false, code::file_not_found);
    run.clean();
    ASSERT_EQ(run.log.size(), row.lines);
    EXPECT_EQ(run.log.at(1), row.line);
    EXPECT_EQ(run.log.at(3),
              row.operation == Operation::processes_create ? L"execute status = 0\n" : L"execute status = 1\n");
    run.system.threads.sleep(1000);
    EXPECT_EQ(run.there(L"oem1.inf"), row.first_left);
    EXPECT_EQ(run.there(L"oem3.inf"), row.second_left);
  }
}

TEST(CleanupINF, APnputilThatHangsIsLeftAfterThreeMinutes) {
  DriverWorld layout;
  layout.state.programs.back().stays = true;
  Trial run(layout);
  const std::uint32_t start = run.system.clock.ticks();
  run.clean();
  EXPECT_EQ(run.system.clock.ticks() - start, 2u * 180000u);
  EXPECT_EQ(run.log.at(6), L"execute status = 1\n");
}

TEST(CleanupINF, ACommandLineThatDoesNotFitIsNotRun) {
  const std::wstring deep = L"C:\\" + std::wstring(230, L'd') + L"\\";
  for (const bool fits : {true, false}) {
    DriverWorld layout;
    const std::wstring folder = fits ? deep : deep.substr(0, 3) + L"d" + deep.substr(3);
    layout.program(folder + L"pnputil.exe", 1, 0);
    Trial run(layout);
    run.put("SystemPath", folder.c_str());
    run.clean();
    EXPECT_EQ(run.log.at(2), L"execute: '\"" + folder + L"pnputil.exe\" -d oem1.inf'\n");
    EXPECT_EQ(run.log.at(2).size(), (fits ? 259u : 260u) + 12u);
    EXPECT_EQ(run.log.at(3), fits ? L"execute status = 1\n" : L"execute status = 0\n");
  }
}

TEST(CleanupINF, EndsInItsOwnWordsWithoutPathsOrFolder) {
  for (const char* key : {"String_SystemPath", "String_WindowsPath"}) {
    Trial run;
    Release(FromStored<CString*>(run.session.store().get(key)));
    run.session.store().put(key, 0);
    run.clean();
    EXPECT_EQ(run.log, (Lines{begin, L"SystemPath or WinPath is empty!", end})) << key;
  }
  for (const wchar_t* windows : {L"C:\\Absent", L"C:\\Absent\\"}) {
    Trial run;
    run.put("WindowsPath", windows);
    run.clean();
    EXPECT_EQ(run.log, (Lines{begin, L"Directory: 'C:\\Absent\\INF' doesn't exist!\n", end}));
  }
  DriverWorld layout;
  layout.file(L"C:\\Work\\INF");
  Trial run(layout);
  run.put("WindowsPath", L"C:\\Work");
  run.clean();
  EXPECT_EQ(run.log.at(1), L"Directory: 'C:\\Work\\INF' doesn't exist!\n");
}

TEST(CleanupINF, AFolderThatCannotBeReadLeavesTheCommandAsAnErrorAndTheEndIsStillWritten) {
  const struct {
    Operation operation;
    std::uint64_t call;
    ports::ErrorCode error;
  } rows[] = {{Operation::files_find_first, 1, code::access_denied},
              {Operation::files_find_next, 4, code::invalid_handle}};
  for (const auto& row : rows) {
    Trial run;
    const auto loaded = run.load("CleanupINF", {{"driverName", "other.inf"}});
    const auto before = run.world.handles().open_by_kind();
    run.faulty.fail(row.operation, run.faulty.calls(row.operation) + row.call, false, row.error);
    try {
      static_cast<void>(loaded.command->Execute(0, 0));
      ADD_FAILURE() << "nothing was raised";
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().value(), static_cast<int>(row.error));
      EXPECT_EQ(&error.code().category(), &winapi::details::win_error_category());
      EXPECT_EQ(dynamic_cast<const base::fs::filesystem_error&>(error).path(), L"C:\\Windows\\INF");
    }
    EXPECT_EQ(run.log.back(), end);
    EXPECT_TRUE(loaded.command->executed);
    EXPECT_FALSE(loaded.command->GuardHeld());
    EXPECT_EQ(run.world.handles().open_by_kind(), before);
  }
}

TEST(CleanupINF, ALinkInTheFolderCountsAsWhatItLeadsTo) {
  DriverWorld layout;
  layout.assigned(L"real.inf", L"linked.inf_amd64_1\\linked.inf");
  Trial run(layout);
  ASSERT_TRUE(run.system.files.create_link(L"C:\\Windows\\INF\\oem7.inf", L"C:\\Windows\\INF\\real.inf", false));
  ASSERT_TRUE(run.system.files.create_link(L"C:\\Windows\\INF\\oem8.inf", L"C:\\Windows\\INF\\absent.inf", false));
  ASSERT_TRUE(run.system.files.create_link(L"C:\\Windows\\INF\\oem9.inf", L"C:\\Windows\\System32", true));
  run.clean("linked.inf");
  EXPECT_EQ(run.log.at(1), L"INF: 'linked.inf' is 'oem7.inf'\n");
  EXPECT_EQ(run.log.size(), 5u);
}

TEST(CleanupINF, WithoutADriverItLoadsAndRemovesNothing) {
  Trial run;
  const auto loaded = run.load("CleanupINF", {});
  EXPECT_EQ(loaded.result, 0u);
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log, (Lines{begin, end}));
}

}  // namespace
}  // namespace ky
