#include "platform/machine/scheduler/scheduler.h"

#include <gtest/gtest.h>

#include <atomic>
#include <sstream>

#include "tests/support/thread_body.h"

namespace machine {
namespace {

using ports::infinite;
namespace wait_result = ports::wait_result;

std::shared_ptr<Waitable> start(Scheduler& scheduler, ThreadId id, std::function<void()> run) {
  auto end = scheduler.start(id, L"worker", std::make_unique<support::Body>(std::move(run)));
  EXPECT_NE(end, nullptr);
  return end;
}

std::shared_ptr<Waitable> event(WaitableKind kind = WaitableKind::manual_event) {
  return std::make_shared<Waitable>(kind, L"event 'test'");
}

std::uint32_t wait_one(Scheduler& scheduler, const std::shared_ptr<Waitable>& object,
                       std::uint32_t timeout = infinite) {
  return scheduler.wait({&object, 1}, false, timeout);
}

SchedulerOptions with_pace(Pace pace) {
  SchedulerOptions options;
  options.pace = pace;
  options.patience = std::chrono::seconds(60);
  return options;
}

// Four workers sleep, poll, pulse, contend for an auto event and join each other; what they saw, in the order they did.
std::string trace_of_a_busy_run(Pace pace) {
  Scheduler scheduler(with_pace(pace));
  const Scheduler::Entered entered(scheduler, 100);
  ports::Mutex mutex;
  std::ostringstream trace;
  const auto note = [&](ThreadId id, const char* what, std::uint32_t result) {
    const Milliseconds now = scheduler.now();
    const ports::Lock lock(mutex);
    trace << now << ' ' << id << ' ' << what << ' ' << result << '\n';
  };
  const auto token = event(WaitableKind::auto_event);
  const auto gate = event();
  std::vector<std::shared_ptr<Waitable>> ends;
  for (ThreadId id = 1; id <= 4; ++id) {
    ends.push_back(start(scheduler, id, [&, id] {
      note(id, "gate", wait_one(scheduler, gate));
      for (std::uint32_t i = 0; i < 4; ++i) {
        note(id, "token", wait_one(scheduler, token, 20 * id));
        scheduler.sleep(7 * id);
        for (int poll = 0; poll < 40; ++poll) EXPECT_EQ(wait_one(scheduler, gate, 0), wait_result::timeout);
        scheduler.signal(*token);
      }
    }));
  }
  scheduler.sleep(5);
  scheduler.signal(*gate);
  scheduler.reset(*gate);
  scheduler.schedule_after(30, [token](Core& core) { core.signal(*token); });
  note(100, "join", scheduler.wait(ends, true, infinite));
  EXPECT_EQ(scheduler.stall(), std::nullopt);
  return trace.str();
}

TEST(Scheduler, AThousandSerialRunsGiveOneTrace) {
  const std::string first = trace_of_a_busy_run(Pace::serial);
  EXPECT_NE(first.find("join 0"), std::string::npos);
  for (int i = 1; i < 1'000; ++i) ASSERT_EQ(trace_of_a_busy_run(Pace::serial), first) << i;
}

TEST(Scheduler, ParallelRunsEndWithoutAStall) {
  for (int i = 0; i < 200; ++i) ASSERT_NE(trace_of_a_busy_run(Pace::parallel).find("join 0"), std::string::npos);
}

TEST(Scheduler, ADeadlockNamesTheThreadsAndFailsTheirWaits) {
  std::wstring told;
  Milliseconds at = 0;
  const auto never = event();
  std::uint32_t asked = 0;
  SchedulerOptions options;
  Scheduler* machine = nullptr;
  options.on_stall = [&](const std::wstring& why) {
    told = why;
    at = machine->now();
    asked = wait_one(*machine, never, 0);
  };
  Scheduler scheduler(options);
  machine = &scheduler;
  const Scheduler::Entered entered(scheduler, 4);
  std::uint32_t result = 0;
  const auto end = start(scheduler, 8, [&] {
    scheduler.sleep(250);
    result = wait_one(scheduler, never);
  });
  EXPECT_EQ(wait_one(scheduler, end), wait_result::failed);
  EXPECT_EQ(wait_one(scheduler, end), wait_result::object_0);
  EXPECT_EQ(result, wait_result::failed);
  EXPECT_EQ(at, 250u);
  EXPECT_EQ(asked, wait_result::timeout);
  EXPECT_NE(told.find(L"thread 4 (main) waits for thread 8 (worker) without limit"), std::wstring::npos);
  EXPECT_NE(told.find(L"thread 8 (worker) waits for event 'test' without limit"), std::wstring::npos);
  EXPECT_EQ(scheduler.stall(), told);
}

TEST(Scheduler, LoopsThatNeverBlockLetTheWorldGoOn) {
  Scheduler scheduler(with_pace(Pace::serial));
  const Scheduler::Entered entered(scheduler, 4);
  const auto always = event();
  scheduler.signal(*always);
  std::atomic<bool> done = false;
  const auto end = start(scheduler, 8, [&] { done = true; });
  while (!done) EXPECT_EQ(wait_one(scheduler, always), wait_result::object_0);
  const auto process = std::make_shared<Waitable>(WaitableKind::process, L"process");
  scheduler.schedule_after(1'000, [process](Core& core) { core.signal(*process); });
  while (wait_one(scheduler, process, 0) != wait_result::object_0) EXPECT_EQ(wait_one(scheduler, always), 0u);
  const Milliseconds begin = scheduler.now();
  while (scheduler.now() < begin + 500) continue;
  EXPECT_LT(scheduler.now(), begin + 2'000);
}

// A reader of the clock must not be set aside while it holds a lock that the one that runs instead then blocks on.
TEST(Scheduler, TheClockMayBeReadUnderALock) {
  Scheduler scheduler(with_pace(Pace::serial));
  const Scheduler::Entered entered(scheduler, 4);
  ports::Mutex mutex;
  const auto work = [&] {
    for (int i = 0; i < 30'000; ++i) {
      const ports::Lock lock(mutex);
      static_cast<void>(scheduler.now());
    }
  };
  const std::vector<std::shared_ptr<Waitable>> ends = {start(scheduler, 8, work), start(scheduler, 12, work)};
  EXPECT_EQ(scheduler.wait(ends, true, infinite), wait_result::object_0);
}

TEST(Scheduler, RealWorkUnderAHoldTakesNoTime) {
  for (const Pace pace : {Pace::serial, Pace::parallel}) {
    Scheduler scheduler(with_pace(pace));
    const Scheduler::Entered entered(scheduler, 4);
    const auto done = event();
    std::thread foreign([&, hold = Scheduler::Hold(scheduler)] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      scheduler.signal(*done);
    });
    EXPECT_EQ(wait_one(scheduler, done, 10), wait_result::object_0);
    foreign.join();
    EXPECT_EQ(scheduler.now(), 0u);
  }
}

TEST(Scheduler, WhenTheLastOneLeavesTheStartedThreadsEnd) {
  Scheduler scheduler(with_pace(Pace::serial));
  const auto never = event();
  std::vector<std::uint32_t> results;
  for (ThreadId run = 1; run <= 2; ++run) {
    const Scheduler::Entered entered(scheduler, 4);
    static_cast<void>(start(scheduler, 8, [&] { results.push_back(wait_one(scheduler, never)); }));
    static_cast<void>(start(scheduler, 12, [&] { results.push_back(wait_one(scheduler, never, 500)); }));
    scheduler.sleep(1);
  }
  EXPECT_EQ(results, std::vector<std::uint32_t>(4, wait_result::failed));
  EXPECT_EQ(scheduler.stall(), std::nullopt) << "that is no stall";
  EXPECT_EQ(scheduler.current(), 0u);
}

TEST(Scheduler, AThreadMayUseTwoMachines) {
  Scheduler one;
  Scheduler other;
  const Scheduler::Entered in_one(one, 4);
  {
    const Scheduler::Entered in_other(other, 8);
    one.sleep(30);
    other.sleep(50);
    EXPECT_EQ(one.current(), 4u);
    EXPECT_EQ(other.current(), 8u);
  }
  EXPECT_EQ(other.current(), 0u);
  EXPECT_EQ(one.now(), 30u);
  EXPECT_EQ(other.now(), 50u);
}

TEST(Scheduler, OnTheRealClockWaitsBlock) {
  Scheduler scheduler(with_pace(Pace::real));
  const Scheduler::Entered entered(scheduler, 4);
  const auto token = event(WaitableKind::auto_event);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(wait_one(scheduler, token, 50), wait_result::timeout);
  scheduler.schedule_after(50, [token](Core& core) { core.signal(*token); });
  EXPECT_EQ(wait_one(scheduler, token, 10'000), wait_result::object_0);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(98));

  std::atomic<int> taken = 0;
  std::vector<std::shared_ptr<Waitable>> ends;
  for (ThreadId id = 8; id < 40; id += 4) {
    ends.push_back(start(scheduler, id, [&] {
      for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(wait_one(scheduler, token), wait_result::object_0);
        ++taken;
        scheduler.signal(*token);
      }
    }));
  }
  scheduler.sleep(5);
  scheduler.signal(*token);
  EXPECT_EQ(scheduler.wait(ends, true, 50'000), wait_result::object_0);
  EXPECT_EQ(taken, 400);
}

TEST(SchedulerDeathTest, ABlockedMachineGivesUpAndNamesTheCounts) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto hang = [] {
    SchedulerOptions options;
    options.patience = std::chrono::milliseconds(50);
    Scheduler scheduler(options);
    const Scheduler::Entered entered(scheduler, 4);
    const Scheduler::Hold hold(scheduler);
    scheduler.sleep(10);
  };
  EXPECT_DEATH_IF_SUPPORTED(hang(), "1 due, 1 holding the clock");
  const auto foreign = [] {
    Scheduler scheduler;
    scheduler.sleep(10);
  };
  EXPECT_DEATH_IF_SUPPORTED(foreign(), "not the machine's");
}

}  // namespace
}  // namespace machine
