#include "platform/machine/scheduler/core.h"

#include <gtest/gtest.h>

#include "platform/ports/threads.h"

namespace machine {
namespace {

using ports::infinite;
namespace wait_result = ports::wait_result;

std::shared_ptr<Waitable> make(WaitableKind kind, std::wstring label = L"it", bool up = false) {
  return std::make_shared<Waitable>(kind, std::move(label), up);
}

// Threads 1, 2 and 3, which park in this order; the clock is held until the test lets it go.
class CoreTest : public testing::Test {
 protected:
  explicit CoreTest(Pace pace = Pace::serial) : core(pace) {
    core.hold();
    for (const ThreadId id : {1u, 2u, 3u}) core.add(id, L"worker", make(WaitableKind::thread));
    core.dispatch();
  }
  void park(ThreadId id, const std::vector<std::shared_ptr<Waitable>>& objects, std::uint32_t timeout = infinite,
            bool all = false) {
    ASSERT_TRUE(core.runs(id));
    ASSERT_EQ(core.wait(id, objects, all, timeout), std::nullopt);
    core.dispatch();
  }
  void park_rest(ThreadId first) {
    for (ThreadId id = first; id <= 3; ++id) park(id, {never});
  }
  void go() {
    core.release();
    core.dispatch();
  }

  Core core;
  const std::shared_ptr<Waitable> never = make(WaitableKind::manual_event, L"event 'never'");
  const std::shared_ptr<Waitable> manual = make(WaitableKind::manual_event, L"event 'manual'");
  const std::shared_ptr<Waitable> automatic = make(WaitableKind::auto_event, L"event 'auto'");
  const std::shared_ptr<Waitable> process = make(WaitableKind::process, L"process 'setup.exe'");
};

TEST_F(CoreTest, AProcessThatEndsAtTheVeryLimitOfAWaitCountsAsEnded) {
  park(1, {never, process}, 180'000);
  park_rest(2);
  core.schedule(180'000, [this](Core& its_core) { its_core.signal(*process); });
  go();
  ASSERT_TRUE(core.runs(1));
  EXPECT_EQ(core.result(1), wait_result::object_0 + 1);
  EXPECT_EQ(core.now(), 180'000u);
  EXPECT_EQ(core.next_due(), std::nullopt) << "the limit of a wait that was served stays behind";
}

TEST_F(CoreTest, AWaitEndsAtItsLimitAndNotBefore) {
  park(1, {never}, 500);
  park(2, {}, 200);
  park(3, {manual}, 200);
  go();
  ASSERT_TRUE(core.runs(2)) << "of two due at one instant the one that was booked first";
  EXPECT_EQ(core.result(2), wait_result::timeout);
  EXPECT_FALSE(core.runs(3)) << "in serial mode one at a time";
  EXPECT_EQ(core.now(), 200u);
  park(2, {never});
  ASSERT_TRUE(core.runs(3));
  EXPECT_EQ(core.now(), 200u);
  park(3, {never});
  ASSERT_TRUE(core.runs(1));
  EXPECT_EQ(core.now(), 500u);
}

TEST_F(CoreTest, AnAutoEventServesTheOldestWaitAlone) {
  park(1, {automatic});
  park(2, {automatic});
  core.signal(*automatic);
  EXPECT_FALSE(automatic->signalled);
  park(3, {never});
  EXPECT_TRUE(core.runs(1));
  EXPECT_FALSE(core.runs(2));
  core.signal(*automatic);
  core.signal(*automatic);
  EXPECT_TRUE(automatic->signalled) << "the second signal finds nobody";
  EXPECT_EQ(core.wait(1, {{automatic}}, false, 0), wait_result::object_0);
  EXPECT_EQ(core.wait(1, {{automatic}}, false, 0), wait_result::timeout) << "consumed twice";
}

TEST_F(CoreTest, AWaitForAllTakesNothingUntilAllAreUp) {
  park(1, {automatic, manual}, infinite, true);
  core.signal(*automatic);
  EXPECT_TRUE(automatic->signalled);
  park(2, {never});
  EXPECT_EQ(core.wait(3, {{manual, automatic}}, true, 0), wait_result::timeout);
  core.signal(*manual);
  EXPECT_FALSE(automatic->signalled);
  park(3, {never});
  ASSERT_TRUE(core.runs(1));
  EXPECT_EQ(core.result(1), wait_result::object_0);
}

TEST_F(CoreTest, APulseIsSeenByAllThatAreParked) {
  park(1, {manual});
  park(2, {never, manual});
  core.signal(*manual);
  Core::reset(*manual);
  EXPECT_EQ(core.wait(3, {{manual}}, false, 0), wait_result::timeout);
  park(3, {never});
  ASSERT_TRUE(core.runs(1));
  park(1, {never});
  ASSERT_TRUE(core.runs(2));
  EXPECT_EQ(core.result(2), wait_result::object_0 + 1);
}

TEST_F(CoreTest, TheClockStandsWhileSomethingIsHeldOrSomebodyMayRun) {
  core.hold();
  park(1, {}, 10);
  park(2, {}, 20);
  go();
  EXPECT_EQ(core.now(), 0u) << "3 runs";
  park(3, {manual});
  EXPECT_EQ(core.now(), 0u) << "held once more";
  EXPECT_EQ(core.stalled(), std::nullopt);
  go();
  EXPECT_EQ(core.now(), 10u);
}

TEST_F(CoreTest, ARepeatingActionTicksAndMayCancelItself) {
  int ticks = 0;
  ActionId timer = 0;
  timer = core.schedule_every(100, [&](Core& its_core) {
    if (++ticks < 3) return;
    EXPECT_TRUE(its_core.cancel(timer));
    EXPECT_FALSE(its_core.cancel(timer));
    its_core.signal(*manual);
  });
  park(1, {manual});
  park_rest(2);
  go();
  EXPECT_TRUE(core.runs(1));
  EXPECT_EQ(core.now(), 300u);
  EXPECT_EQ(core.next_due(), std::nullopt);
}

TEST_F(CoreTest, StallsTellTheReasonAndFailTheWaits) {
  struct Case {
    const wchar_t* reason;
    std::function<void(Core&)> arrange;
    Milliseconds latest;
  };
  const Case cases[] = {
      {L"nothing is due\n", [](Core&) {}, 0},
      {L"waits for the user", [](Core& in) { in.schedule_every(100, [](Core&) {}); }, Core::idle_limit},
      {L"waits for the user",
       [](Core& in) {
         in.schedule_every(100, [](Core&) {});
         in.schedule(Core::horizon + 1, [](Core&) {});
       },
       Core::idle_limit},
      {L"within a day", [](Core& in) { in.schedule(Core::horizon + 1, [](Core&) {}); }, 0},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(each.reason)));
    Core one(Pace::serial);
    one.add(8, L"main", make(WaitableKind::thread));
    one.dispatch();
    each.arrange(one);
    ASSERT_EQ(one.wait(8, {{manual, process}}, false, infinite), std::nullopt);
    one.dispatch();
    ASSERT_TRUE(one.stalled());
    EXPECT_NE(one.stalled()->find(each.reason), std::wstring::npos);
    EXPECT_NE(one.stalled()->find(L"thread 8 (main) waits for event 'manual', process 'setup.exe' without limit"),
              std::wstring::npos);
    EXPECT_EQ(one.now(), each.latest);
    one.fail_waits();
    one.dispatch();
    ASSERT_TRUE(one.runs(8));
    EXPECT_EQ(one.result(8), wait_result::failed);
  }
}

TEST_F(CoreTest, ALoopOfTimedWaitsEndsAtTheHorizon) {
  park_rest(1);
  core.add(4, L"poller", make(WaitableKind::thread));
  core.dispatch();
  core.release();
  int rounds = 0;
  for (; core.runs(4); ++rounds) {
    ASSERT_EQ(core.wait(4, {}, false, 100), std::nullopt);
    core.dispatch();
  }
  EXPECT_EQ(rounds, 864'001);
  EXPECT_TRUE(core.stalled());
}

TEST_F(CoreTest, SpinsLetOthersRunAndThenMoveTheClock) {
  core.release();
  for (int i = 0; i < 1'000; ++i) core.spin(1, false);
  core.dispatch();
  EXPECT_TRUE(core.runs(1)) << "it may hold a lock that the others want";
  core.spin(1, true);
  core.dispatch();
  EXPECT_TRUE(core.runs(2));
  park(2, {}, 5'000);
  park(3, {never});
  ASSERT_TRUE(core.runs(1));
  std::uint64_t spins = 0;
  for (; core.runs(1) && spins < 10'000'000; ++spins) {
    core.spin(1, true);
    core.dispatch();
  }
  EXPECT_TRUE(core.runs(2));
  EXPECT_EQ(core.now(), 5'000u) << "never beyond what is due next";
  EXPECT_LT(spins, 200'000u);
}

TEST_F(CoreTest, ClosingFailsWaitsInsteadOfParking) {
  park(1, {never});
  park(2, {}, 50);
  core.close(true);
  EXPECT_EQ(core.wait(3, {{never}}, false, 50), wait_result::failed);
  core.leave(3);
  core.dispatch();
  EXPECT_TRUE(core.runs(1));
  EXPECT_EQ(core.result(1), wait_result::failed);
  EXPECT_EQ(core.stalled(), std::nullopt);
}

class ParallelCoreTest : public CoreTest {
 protected:
  ParallelCoreTest() : CoreTest(Pace::parallel) {}
};

TEST_F(ParallelCoreTest, AllThatMayRunDoAndTheClockWaitsForAll) {
  EXPECT_EQ(core.take_granted(), (std::vector<ThreadId>{1, 2, 3}));
  park(2, {}, 10);
  park(1, {}, 10);
  go();
  EXPECT_EQ(core.now(), 0u);
  park(3, {}, 10);
  EXPECT_EQ(core.now(), 10u);
  EXPECT_EQ(core.take_granted(), (std::vector<ThreadId>{2, 1, 3}));
}

}  // namespace
}  // namespace machine
