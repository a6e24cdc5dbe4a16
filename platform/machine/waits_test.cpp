#include "platform/machine/waits.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/machine/errors.h"
#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/named_objects.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/machine/threads.h"
#include "platform/ports/codes.h"
#include "tests/support/thread_body.h"

namespace machine {
namespace {

using ports::Handle;
namespace code = ports::code;
namespace wait_result = ports::wait_result;

class MachineWaits : public testing::Test {
 public:
  Errors errors;
  Scheduler scheduler;
  HandleTable handles;
  NamedObjects names;
  Ids ids{100};
  Waits waits{scheduler, handles, names, errors};
  Threads threads{scheduler, handles, ids, errors};
  Scheduler::Entered entered{scheduler, ids.take()};
};

TEST_F(MachineWaits, RefusesWhatWindowsRefuses) {
  const Handle event = waits.create_event(true, true, nullptr);
  const Handle again = handles.open(handles.find(event));
  const Handle file = handles.open(std::make_shared<Object>(ObjectKind::file));
  const Handle search = handles.open(std::make_shared<Object>(ObjectKind::search));
  const Handle closed = waits.create_event(true, true, nullptr);
  ASSERT_TRUE(waits.close(closed));
  struct Case {
    const char* what;
    std::vector<Handle> handles;
    bool all;
    std::uint32_t result;
    ports::ErrorCode error;
  };
  const Case cases[] = {
      {"invalid", {Handle::invalid}, false, wait_result::failed, code::invalid_handle},
      {"closed", {event, closed}, false, wait_result::failed, code::invalid_handle},
      {"not waitable", {file}, false, wait_result::failed, code::invalid_handle},
      {"one object twice for all", {event, again}, true, wait_result::failed, code::invalid_parameter},
      {"one object twice for any", {event, again}, false, wait_result::object_0, 7},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    errors.set_last(7);
    EXPECT_EQ(waits.wait(each.handles, each.all, 0), each.result);
    EXPECT_EQ(errors.last(), each.error);
  }
  for (const Handle no_event : {Handle::null, Handle::invalid, closed, file}) {
    errors.set_last(7);
    EXPECT_FALSE(waits.set(no_event));
    EXPECT_EQ(errors.last(), code::invalid_handle);
    EXPECT_FALSE(waits.reset(no_event));
  }
  EXPECT_FALSE(waits.close(closed));
  EXPECT_FALSE(waits.close(search)) << "a search is closed as a search";
  EXPECT_EQ(handles.open_by_kind(), (std::map<ObjectKind, std::size_t>{
                                        {ObjectKind::event, 2}, {ObjectKind::file, 1}, {ObjectKind::search, 1}}));
}

TEST_F(MachineWaits, ANameMakesOneEventForAll) {
  errors.set_last(7);
  const Handle first = waits.create_event(false, false, L"Local\\Refresh");
  EXPECT_EQ(errors.last(), code::success);
  const Handle second = waits.create_event(true, true, L"Refresh");
  EXPECT_EQ(errors.last(), code::already_exists);
  EXPECT_NE(first, second);
  EXPECT_TRUE(waits.set(second));
  EXPECT_EQ(waits.wait({&first, 1}, false, 0), wait_result::object_0);
  EXPECT_EQ(waits.wait({&second, 1}, false, 0), wait_result::timeout) << "it is still the auto event of the first";

  for (const wchar_t* other : {L"refresh", L"Global\\Refresh"}) {
    EXPECT_NE(waits.create_event(false, false, other), Handle::null);
    EXPECT_EQ(errors.last(), code::success);
  }
  EXPECT_EQ(waits.create_event(false, false, L"Some\\Refresh"), Handle::null);
  EXPECT_EQ(errors.last(), code::path_not_found);
  const auto mutex = std::make_shared<Object>(ObjectKind::other);
  EXPECT_EQ(names.find_or_add(L"Single", [&] { return mutex; }).object, mutex);
  EXPECT_EQ(waits.create_event(false, false, L"Single"), Handle::null);
  EXPECT_EQ(errors.last(), code::invalid_handle);

  waits.close(first);
  waits.close(second);
  EXPECT_NE(waits.create_event(false, false, L"Refresh"), Handle::null);
  EXPECT_EQ(errors.last(), code::success) << "the name went with the last handle";
}

TEST_F(MachineWaits, AThreadIsJoinedByItsHandleAndHasItsOwnError) {
  errors.set_last(7);
  ports::ErrorCode seen_error = 1;
  std::uint32_t seen_id = 0;
  std::uint32_t id = 0;
  const auto body = [&] {
    seen_error = errors.last();
    errors.set_last(9);
    seen_id = threads.current_id();
    threads.sleep(300);
  };
  const Handle thread = threads.start(std::make_unique<support::Body>(body), id);
  EXPECT_EQ(waits.wait({&thread, 1}, false, 299), wait_result::timeout);
  EXPECT_EQ(waits.wait({&thread, 1}, false, 1), wait_result::object_0);
  EXPECT_EQ(seen_id, id);
  EXPECT_EQ(id, 104u);
  EXPECT_EQ(seen_error, 0u);
  EXPECT_EQ(errors.last(), 7u);
  EXPECT_EQ(Errors().last(), 0u) << "another machine's";
  EXPECT_TRUE(waits.close(thread));
  EXPECT_TRUE(handles.open_by_kind().empty());
}

}  // namespace
}  // namespace machine
