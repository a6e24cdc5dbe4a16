#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/machine/scheduler/core.h"
#include "platform/ports/mutex.h"
#include "platform/ports/threads.h"

namespace machine {

struct SchedulerOptions {
  Pace pace = Pace::serial;
  /// Called when nothing can go on, with every thread and what it waits for; on the thread that found out, without a
  /// lock held. A rehearsal does not come back from it. Otherwise all waits then fail, and the run stays marked. It
  /// must neither throw nor wait.
  std::function<void(const std::wstring&)> on_stall;
  /// Real time without any progress after which a blocked thread aborts the process, so that no test run hangs.
  std::chrono::milliseconds patience = std::chrono::minutes(2);
};

/// The machine's time and threads. Safe for any thread; what waits must be one of the machine's own: `enter`ed or
/// `start`ed. The clock moves when all of these are blocked here, and then to the nearest thing that is due.
///
/// Two rules for code that runs on it. No lock is held over a wait when another of the machine's threads may want that
/// lock. And whatever is ended by another thread is waited for here; real work aside is bracketed by a `Hold`.
class Scheduler {
  /// That a real thread is one of a scheduler's. A thread has a stack of them, since it may use several machines.
  class Place {
   public:
    Place(const Scheduler& owner, ThreadId id);
    ~Place();
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    const Scheduler& owner;
    const ThreadId id;

   private:
    friend class Scheduler;
    static thread_local Place* top_;
    Place* below_;
  };

 public:
  explicit Scheduler(SchedulerOptions options = {});
  ~Scheduler();
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  /// The calling thread as one of the machine's, while this lives. When the last one leaves, all waits of started
  /// threads fail and their ends are waited for, as a process takes its threads along.
  class Entered {
   public:
    Entered(Scheduler& scheduler, ThreadId id, std::wstring name = L"main");
    ~Entered();  // on the thread that made it
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;

   private:
    Scheduler& scheduler_;
    Place place_;
  };

  /// The clock stands still while one lives. Taken by one of the machine's threads before real work starts elsewhere,
  /// given back on any thread.
  class Hold {
   public:
    explicit Hold(Scheduler& scheduler);
    ~Hold();
    Hold(Hold&& other) noexcept : scheduler_(other.scheduler_) { other.scheduler_ = nullptr; }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    Scheduler* scheduler_;
  };

  /// Runs `body` on a new thread and destroys it there; gives what is signalled when the thread ends, null when there
  /// can be no more threads. `id` is new and not 0.
  [[nodiscard]] std::shared_ptr<Waitable> start(ThreadId id, std::wstring name,
                                                std::unique_ptr<ports::ThreadBody> body);

  /// The id with which the calling thread is one of the machine's; 0 when it is not.
  [[nodiscard]] ThreadId current() const;

  [[nodiscard]] Milliseconds now();

  /// WaitForMultipleObjects without its checks: `ports::wait_result`. Aborts on a thread that is not the machine's,
  /// and on one that handles a stall, which may only ask how things stand, with no time to wait.
  [[nodiscard]] std::uint32_t wait(Waitables objects, bool all, std::uint32_t timeout);
  /// 0 lets the other ready threads run first.
  void sleep(std::uint32_t milliseconds);

  void signal(Waitable& object);
  void reset(Waitable& object);
  [[nodiscard]] bool signalled(const Waitable& object);

  ActionId schedule(Milliseconds when, Action action, Rank rank = Rank::happening);
  /// `schedule` counted from now.
  ActionId schedule_after(Milliseconds delay, Action action);
  ActionId schedule_every(std::uint32_t period, Action action);
  bool cancel(ActionId id);
  /// Does `action` now, under the lock: several changes as one, or plain data that scheduled actions touch too.
  void perform(const Action& action);

  /// The first stall's description; nothing that the machine did after it is to be trusted.
  [[nodiscard]] std::optional<std::wstring> stall();

 private:
  struct Member {
    ports::Condition condition;
    std::thread thread;  // none for one that entered
  };
  using Instant = std::chrono::steady_clock::time_point;

  void enter(ThreadId id, std::wstring name);
  void leave_entered(ThreadId id);
  void run(ThreadId id, std::unique_ptr<ports::ThreadBody> body);
  void join_ended();

  [[nodiscard]] ThreadId member() KY_REQUIRES(mutex_);
  void block(ThreadId id) KY_REQUIRES(mutex_);
  void spin(bool may_yield) KY_REQUIRES(mutex_);
  void catch_up() KY_REQUIRES(mutex_);
  [[nodiscard]] Milliseconds elapsed() const;
  void settle() KY_REQUIRES(mutex_);
  void handle_stall() KY_REQUIRES(mutex_);
  void end_started() KY_REQUIRES(mutex_);
  [[noreturn]] void give_up(const char* why) KY_REQUIRES(mutex_);

  const SchedulerOptions options_;
  const Instant begin_;
  ports::Mutex mutex_;
  Core core_ KY_GUARDED_BY(mutex_);
  std::map<ThreadId, Member> members_ KY_GUARDED_BY(mutex_);
  ports::Condition member_gone_;
  std::vector<std::thread> ended_ KY_GUARDED_BY(mutex_);
  std::size_t entered_ KY_GUARDED_BY(mutex_) = 0;
  std::optional<Milliseconds> next_due_ KY_GUARDED_BY(mutex_);
  std::atomic<Milliseconds> quiet_until_{0};  // when something is due next, at the real pace
  bool stalling_ KY_GUARDED_BY(mutex_) = false;
  std::size_t stalls_ KY_GUARDED_BY(mutex_) = 0;
  std::optional<std::wstring> first_stall_ KY_GUARDED_BY(mutex_);
};

}  // namespace machine
