// COM as a thread has it, and the task scheduler, which needs it.
#include "platform/ports/task_scheduler.h"

#include "platform/ports/com.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::ComModel;
using ports::code::as_result;
namespace code = ports::code;

class Com : public Contract {
 protected:
  ~Com() override {
    for (; entered_ > 0; --entered_) system().com.uninitialize();
  }
  ports::Result enter(ComModel model) {
    const ports::Result result = system().com.initialize(model);
    if (ports::succeeded(result)) ++entered_;
    return result;
  }
  void leave() {
    --entered_;
    system().com.uninitialize();
  }
  ports::Result secure() {
    return system().com.initialize_security(ports::com_security::packet_privacy, ports::com_security::impersonate);
  }

 private:
  int entered_ = 0;
};

TEST_P(Com, AThreadHasOneModelUntilItHasLeftAsOftenAsItCame) {
  EXPECT_EQ(enter(ComModel::multithreaded), code::ok);
  EXPECT_EQ(enter(ComModel::multithreaded), code::nothing);
  EXPECT_EQ(enter(ComModel::apartment_threaded), code::changed_mode);
  leave();
  EXPECT_EQ(enter(ComModel::apartment_threaded), code::changed_mode);
  leave();
  EXPECT_EQ(enter(ComModel::apartment_threaded), code::ok);
}

TEST_P(Com, SecurityIsSettledOnce) {
  expect_but_for_wine("security of COM", secure() == code::not_initialized);
  EXPECT_EQ(enter(ComModel::multithreaded), code::ok);
  EXPECT_EQ(secure(), code::ok);
  expect_but_for_wine("security of COM", secure() == code::security_too_late);
}

class Tasks : public Com {
 protected:
  ports::TaskScheduler& tasks() { return system().tasks; }

  /// The root folder of a connected service; both are given back with the test.
  void connect() {
    ASSERT_EQ(enter(ComModel::multithreaded), code::ok);
    ASSERT_EQ(tasks().create_service(service_), code::ok);
    EXPECT_EQ(tasks().folder(service_, L"\\", root_), as_result(code::only_if_connected));
    ASSERT_EQ(tasks().connect(service_), code::ok);
    ASSERT_EQ(tasks().folder(service_, L"\\", root_), code::ok);
  }
  ~Tasks() override {
    tasks().release(root_);
    tasks().release(service_);
  }
  [[nodiscard]] ports::TaskService service() const { return service_; }
  [[nodiscard]] ports::TaskFolder root() const { return root_; }

  /// The name that the task tells which is found under `name`, or how that fails.
  std::wstring told(ports::TaskFolder folder, const wchar_t* name) {
    ports::ScheduledTask task = ports::ScheduledTask::null;
    if (const ports::Result result = tasks().task(folder, name, task); result != code::ok) {
      return std::to_wstring(static_cast<std::uint32_t>(result) & 0xFFFF);
    }
    std::wstring own;
    EXPECT_EQ(tasks().name(task, own), code::ok);
    tasks().release(task);
    return own;
  }

 private:
  ports::TaskService service_ = ports::TaskService::null;
  ports::TaskFolder root_ = ports::TaskFolder::null;
};

TEST_P(Tasks, NothingGoesWithoutCom) {
  ports::TaskService service = ports::TaskService::null;
  EXPECT_EQ(tasks().create_service(service), code::not_initialized);
  EXPECT_EQ(service, ports::TaskService::null);
}

TEST_P(Tasks, ATaskIsFoundInAnyCaseAndDeleted) {
  connect();
  world().add_task(L"\\Ky Contract");
  EXPECT_EQ(told(root(), L"Ky Contract"), L"Ky Contract");
  EXPECT_NE(told(root(), L"ky CONTRACT"), L"2") << "found";
  expect_but_for_wine("the case of a task's name", told(root(), L"ky CONTRACT") == L"Ky Contract");
  EXPECT_EQ(told(root(), L"Ky"), L"2");
  EXPECT_EQ(told(root(), L""), L"3");
  EXPECT_EQ(tasks().remove(root(), L"Ky"), as_result(code::file_not_found));
  EXPECT_EQ(tasks().remove(root(), L"KY Contract"), code::ok);
  EXPECT_EQ(told(root(), L"Ky Contract"), L"2");
  EXPECT_EQ(tasks().remove(root(), L"Ky Contract"), as_result(code::file_not_found));
}

TEST_P(Tasks, AFolderHasItsOwnTasks) {
  connect();
  ports::TaskFolder folder = ports::TaskFolder::null;
  expect_but_for_wine("a task folder that is not there",
                      tasks().folder(service(), L"\\Ky Folder", folder) == as_result(code::file_not_found));
  EXPECT_EQ(folder, ports::TaskFolder::null);
  world().add_task(L"\\Ky Folder\\Ky Below");
  ASSERT_EQ(tasks().folder(service(), L"\\Ky Folder", folder), code::ok);
  EXPECT_EQ(told(folder, L"Ky Below"), L"Ky Below");
  EXPECT_EQ(told(root(), L"Ky Folder\\Ky Below"), L"Ky Below");
  EXPECT_EQ(told(root(), L"Ky Below"), L"2");
  EXPECT_EQ(tasks().remove(folder, L"Ky Below"), code::ok);
  tasks().release(folder);
}

KY_CONTRACT(Com);
KY_CONTRACT(Tasks);

}  // namespace

}  // namespace contract
