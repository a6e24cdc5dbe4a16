#include <functional>

#include "tests/contract/world.h"
#include "tests/support/thread_body.h"

namespace contract {

namespace {

using ports::Handle;
namespace code = ports::code;
namespace result = ports::wait_result;

class WaitsAndThreads : public Contract {
 protected:
  ports::Waits& waits() { return system().waits; }
  std::uint32_t wait(std::initializer_list<Handle> handles, std::uint32_t milliseconds = 0, bool all = false) {
    return waits().wait({handles.begin(), handles.size()}, all, milliseconds);
  }
  Handle event(bool manual = false, bool set = false, const wchar_t* name = nullptr) {
    return waits().create_event(manual, set, name);
  }
  Handle start(std::function<void()> body, std::uint32_t& id) {
    return system().threads.start(std::make_unique<support::Body>(std::move(body)), id);
  }
  void close(std::initializer_list<Handle> handles) {
    for (const Handle handle : handles) EXPECT_TRUE(waits().close(handle));
  }
};

TEST_P(WaitsAndThreads, AWaitConsumesAnEventUnlessItsResetIsManual) {
  const Handle once = event(false, true), lasting = event(true, true);
  EXPECT_EQ(wait({once}), result::object_0);
  EXPECT_EQ(wait({once}), result::timeout);
  EXPECT_EQ(wait({lasting}), result::object_0);
  EXPECT_EQ(wait({lasting}), result::object_0);
  EXPECT_TRUE(waits().reset(lasting));
  EXPECT_EQ(wait({lasting}), result::timeout);
  EXPECT_TRUE(waits().set(once));
  EXPECT_EQ(wait({lasting, once}), result::object_0 + 1);
  close({once, lasting});
}

TEST_P(WaitsAndThreads, AWaitForAllTakesNothingUntilAllAreThere) {
  const Handle a = event(false, true), b = event();
  EXPECT_EQ(wait({a, b}, 0, true), result::timeout);
  EXPECT_TRUE(waits().set(b));
  EXPECT_EQ(wait({a, b}, 0, true), result::object_0);
  EXPECT_EQ(wait({a, b}), result::timeout);
  EXPECT_TRUE(waits().set(b));
  EXPECT_TRUE(waits().set(a));
  EXPECT_EQ(wait({a, b}), result::object_0) << "the lowest position";
  EXPECT_EQ(wait({b}), result::object_0) << "the other was left";
  close({a, b});
}

TEST_P(WaitsAndThreads, AWaitThatCannotBeIsRefused) {
  const Handle a = event();
  const auto refusal = [&](const std::vector<Handle>& handles, bool all) {
    EXPECT_EQ(waits().wait(handles, all, 0), result::failed);
    return last_error();
  };
  EXPECT_EQ(refusal({}, false), code::invalid_parameter);
  EXPECT_EQ(refusal(std::vector<Handle>(65, a), false), code::invalid_parameter);
  EXPECT_EQ(refusal({a, Handle::null}, false), code::invalid_handle);
  expect_but_for_wine("doubles in a wait for all", waits().wait(std::vector<Handle>{a, a}, true, 0) == result::failed);
  EXPECT_EQ(waits().wait(std::vector<Handle>(64, a), false, 0), result::timeout);
  close({a});
  EXPECT_EQ(refusal({a}, false), code::invalid_handle) << "it is closed";
  EXPECT_EQ(code_of(waits().set(a)), code::invalid_handle);
  EXPECT_EQ(code_of(waits().reset(a)), code::invalid_handle);
  EXPECT_EQ(code_of(waits().close(a)), code::invalid_handle);
}

TEST_P(WaitsAndThreads, ANameMakesOneEventForAll) {
  const Handle first = event(false, false, L"ky-contract-event");
  const Handle second = event(false, false, L"ky-contract-event");
  EXPECT_EQ(last_error(), code::already_exists);
  EXPECT_TRUE(waits().set(first));
  EXPECT_EQ(wait({second}), result::object_0);
  EXPECT_EQ(code_of(event(false, false, L"no\\such\\space") != Handle::null), code::path_not_found);
  close({first, second});
}

TEST_P(WaitsAndThreads, TimeGoesByInWaitsAndSleeps) {
  const Handle never = event();
  const std::uint32_t begin = system().clock.ticks();
  const std::int64_t seconds = system().clock.seconds_since_1970();
  EXPECT_EQ(wait({never}, 200), result::timeout);
  EXPECT_GE(system().clock.ticks() - begin, 180U);
  system().threads.sleep(900);
  const std::uint32_t passed = system().clock.ticks() - begin;
  EXPECT_GE(passed, 1080U);
  EXPECT_LE(passed, 20000U);
  EXPECT_GE(system().clock.seconds_since_1970() - seconds, 1);
  const ports::LocalTime now = system().clock.local();
  EXPECT_TRUE(now.year >= 2000 && now.month >= 1 && now.month <= 12 && now.day >= 1 && now.hour <= 23);
  close({never});
}

TEST_P(WaitsAndThreads, AThreadRunsItsBodyOnceAndIsWaitedFor) {
  const Handle go = event(), seen = event();
  std::uint32_t id = 0, inside = 0, runs = 0;
  const Handle thread = start(
      [&] {
        inside = system().threads.current_id();
        ++runs;
        static_cast<void>(waits().set(seen));
        static_cast<void>(wait({go}, ports::infinite));
      },
      id);
  ASSERT_NE(thread, Handle::null);
  EXPECT_EQ(wait({seen}, 60000), result::object_0);
  EXPECT_EQ(wait({thread}), result::timeout);
  EXPECT_TRUE(waits().set(go));
  EXPECT_EQ(wait({thread}, 60000), result::object_0);
  EXPECT_EQ(inside, id);
  EXPECT_NE(id, system().threads.current_id());
  EXPECT_EQ(runs, 1U);
  close({go, seen, thread});
}

KY_CONTRACT(WaitsAndThreads);

}  // namespace

}  // namespace contract
