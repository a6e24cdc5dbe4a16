#include "platform/machine/task_scheduler.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using support::NamedWorld;

class MachineTasks : public testing::Test {
 protected:
  MachineTasks() {
    world.state.scheduled_tasks.tasks = {{L"\\Suite Update", {}}, {L"\\Suite\\Scan", {}}, {L"\\Kept", {true}}};
  }

  void make() {
    machine = world.make();
    ASSERT_EQ(machine->com().initialize(ports::ComModel::multithreaded), code::ok);
    ASSERT_EQ(tasks().create_service(service), code::ok);
  }

  TaskScheduler& tasks() { return machine->tasks(); }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
  ports::TaskService service = ports::TaskService::null;
  ports::TaskFolder folder = ports::TaskFolder::null;
  ports::ScheduledTask task = ports::ScheduledTask::null;
};

TEST_F(MachineTasks, ATaskIsFoundInAnyCaseByEveryPathToIt) {
  make();
  ASSERT_EQ(tasks().connect(service), code::ok);
  for (const auto& [path, asked, name] :
       {std::tuple{L"\\suite\\", L"SCAN", L"Scan"}, std::tuple{L"\\", L"suite\\scan", L"Scan"},
        std::tuple{L"\\", L"suite update", L"Suite Update"}}) {
    std::wstring told;
    ASSERT_EQ(tasks().folder(service, path, folder), code::ok);
    ASSERT_EQ(tasks().task(folder, asked, task), code::ok);
    EXPECT_EQ(tasks().name(task, told), code::ok);
    EXPECT_EQ(told, name);
    tasks().release(task);
  }
  EXPECT_EQ(tasks().remove(folder, L"KEPT"), code::as_result(code::access_denied));
  EXPECT_EQ(tasks().remove(folder, L""), code::as_result(code::path_not_found));
  EXPECT_EQ(machine->state().scheduled_tasks.tasks.size(), 3U);
}

TEST_F(MachineTasks, NothingGoesWithoutComOrTheService) {
  world.state.scheduled_tasks.running = false;
  make();
  EXPECT_EQ(tasks().connect(service), code::scheduler_not_running);
  tasks().release(service);
  EXPECT_EQ(tasks().connect(service), code::pointer);
  EXPECT_EQ(tasks().open_objects(), 0U);
  machine->com().uninitialize();
  EXPECT_EQ(tasks().create_service(service), code::not_initialized);
}

}  // namespace
}  // namespace machine
