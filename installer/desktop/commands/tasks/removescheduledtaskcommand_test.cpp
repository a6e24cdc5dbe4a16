#include "installer/desktop/commands/tasks/removescheduledtaskcommand.h"

#include "installer/desktop/commands/tasks/winscheduler.h"
#include "installer/extern/base/include/winapi/com_error.h"
#include "platform/ports/codes.h"
#include "platform/ports/com.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

namespace code = ports::code;
using faults::Operation;
using Lines = std::vector<std::wstring>;

constexpr wchar_t begin[] = L"5: RemoveScheduledTask Begin execute.\n";
constexpr wchar_t not_removed[] = L"Scheduled task 'Suite Update' was not removed. Error '31' \n";

struct Trial : CommandWorld {
  Trial() : CommandWorld(layout()) {}
  static machine::State layout() {
    machine::State state = machine::bare_state();
    state.scheduled_tasks.tasks = {{L"\\Suite Update", {}}, {L"\\Suite\\Scan", {}}, {L"\\Kept", {true}}};
    return state;
  }
  /// Runs the command; COM and the scheduler's objects are balanced afterwards.
  host::CommandOwner remove(const char* name) {
    host::CommandOwner command = run("RemoveScheduledTask", {{"name", name}});
    EXPECT_EQ(world.tasks().open_objects(), 0u);
    EXPECT_EQ(system.com.initialize_security(6, 3), code::not_initialized) << "COM was left";
    EXPECT_FALSE(command->executed);
    EXPECT_FALSE(command->GuardHeld());
    return command;
  }
  bool there() { return world.state().scheduled_tasks.tasks.count(L"\\Suite Update") != 0; }
};

TEST(RemoveScheduledTask, TheTaskOfThisNameGoes) {
  Trial run;
  run.put("Product", L"Suite");
  const auto command = run.remove("[Product] Update");
  EXPECT_EQ(run.log, (Lines{begin, L"[WinScheduler] CoInitializeEx() status = 0x0\n",
                            L"[WinScheduler] CoInitializeSecurity() status = 0x0\n",
                            L"Scheduled task 'Suite Update' was removed\n"}));
  EXPECT_FALSE(run.there());
  EXPECT_EQ(command->GetNextIndex(), 6);
  EXPECT_EQ(run.log.back(), L"[InstallCommand] Warning: GetNextIndex called before Execute\n");
  run.log.clear();
  EXPECT_EQ(command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log, (Lines{begin, L"[WinScheduler] CoInitializeEx() status = 0x0\n",
                            L"[WinScheduler] CoInitializeSecurity() status = 0x80010119\n", not_removed}));
}

TEST(RemoveScheduledTask, AnyOtherNameIsLeftAlone) {
  for (const char* name : {"", "Absent", "suite update", "Suite\\Scan", "\\Suite Update", "Kept", "Scan"}) {
    Trial run;
    run.remove(name);
    EXPECT_EQ(run.log.back(), L"Scheduled task '" + base::strings::to_wide(name) + L"' was not removed. Error '31' \n");
    EXPECT_EQ(run.world.state().scheduled_tasks.tasks.size(), 3u);
  }
}

TEST(RemoveScheduledTask, AnUndefinedNameDoesNotTouchTheScheduler) {
  Trial run;
  run.remove("[None] Update");
  EXPECT_EQ(run.log, (Lines{begin, L"Could not expand name = [None] Update\n"}));
  EXPECT_EQ(run.faulty.calls(Operation::com_initialize), 0u);
}

TEST(RemoveScheduledTask, EachStepThatFailsIsToldAndNothingStaysHeld) {
  const struct {
    Operation operation;
    ports::Result result;
    const wchar_t* line;  // null: only what became of the task
  } rows[] = {
      {Operation::com_initialize, code::fail, L"[WinScheduler] CoInitializeEx failed = 0x80004005\n"},
      {Operation::com_initialize_security, code::fail, L"[WinScheduler] CoInitializeSecurity failed = 0x80004005\n"},
      {Operation::tasks_create_service, code::class_not_registered,
       L"[WinScheduler] CoCreateInstance failed = 0x80040154\n"},
      {Operation::tasks_connect, code::scheduler_not_running, L"[WinScheduler] Connect failed = 0x80041315\n"},
      {Operation::tasks_folder, code::as_result(code::file_not_found),
       L"[WinScheduler] GetFolder failed = 0x80070002\n"},
      {Operation::tasks_task, code::as_result(code::access_denied), nullptr},
      {Operation::tasks_name, code::no_memory, nullptr},
      {Operation::tasks_remove, code::as_result(code::access_denied), nullptr},
  };
  for (const auto& row : rows) {
    Trial run;
    run.faulty.fail(row.operation, 1, false, static_cast<ports::ErrorCode>(row.result));
    run.remove("Suite Update");
    EXPECT_TRUE(run.there());
    if (row.line == nullptr) {
      EXPECT_EQ(run.log.back(), not_removed);
    } else {
      EXPECT_EQ(run.log.at(run.log.size() - 2), row.line);
      EXPECT_EQ(run.log.back(), L"WinScheduler init failed. Error = 31\n");
    }
  }
}

TEST(RemoveScheduledTask, OnAThreadThatHasComItIsNotEndedAndAnotherModelKeepsTheReferences) {
  const struct {
    ports::ComModel model;
    bool folder_fails;
    const wchar_t* status;
    const wchar_t* line;
    std::size_t held;
  } rows[] = {
      {ports::ComModel::multithreaded, false, L"0x1\n", L"Scheduled task 'Suite Update' was removed\n", 0},
      {ports::ComModel::multithreaded, true, L"0x1\n", L"WinScheduler init failed. Error = 31\n", 0},
      {ports::ComModel::apartment_threaded, false, L"0x80010106\n", L"Scheduled task 'Suite Update' was removed\n", 2},
      {ports::ComModel::apartment_threaded, true, L"0x80010106\n", L"WinScheduler init failed. Error = 31\n", 1},
  };
  for (const auto& row : rows) {
    Trial run;
    ASSERT_EQ(run.system.com.initialize(row.model), code::ok);
    if (row.folder_fails) run.faulty.fail(Operation::tasks_folder, 1, false, static_cast<ports::ErrorCode>(code::fail));
    run.run("RemoveScheduledTask", {{"name", "Suite Update"}});
    EXPECT_EQ(run.log.at(1), std::wstring(L"[WinScheduler] CoInitializeEx() status = ") + row.status);
    EXPECT_EQ(run.log.back(), row.line);
    EXPECT_EQ(run.world.tasks().open_objects(), row.held);
    EXPECT_EQ(run.system.com.initialize_security(6, 3), code::security_too_late) << "COM is still the thread's";
    run.system.com.uninitialize();
    EXPECT_EQ(run.system.com.initialize_security(6, 3), code::not_initialized) << "once";
  }
}

TEST(RemoveScheduledTask, NoMemoryForATextLeavesTheCommandAndNothingStaysHeld) {
  for (const Operation operation : {Operation::tasks_folder, Operation::tasks_task, Operation::tasks_remove}) {
    Trial run;
    const auto loaded = run.load("RemoveScheduledTask", {{"name", "Suite Update"}});
    run.faulty.fail(operation, 1, false, code::not_enough_memory);
    try {
      static_cast<void>(loaded.command->Execute(0, 0));
      ADD_FAILURE() << "nothing was raised";
    } catch (const winapi::com_error& error) {
      EXPECT_EQ(error.code(), code::no_memory);
    }
    EXPECT_TRUE(run.there());
    EXPECT_EQ(run.world.tasks().open_objects(), 0u);
    EXPECT_EQ(run.system.com.initialize_security(6, 3), code::not_initialized) << "COM was left";
    EXPECT_FALSE(loaded.command->GuardHeld());
  }
}

TEST(RemoveScheduledTask, WithoutANameItLoadsAndRemovesNothing) {
  Trial run;
  const auto loaded = run.load("RemoveScheduledTask", {});
  EXPECT_EQ(loaded.result, 0u);
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(run.log.back(), L"Scheduled task '' was not removed. Error '31' \n");
}

}  // namespace
}  // namespace ky
