#pragma once

#include <compare>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/machine/scheduler/waitable.h"

namespace machine {

class Core;

using ThreadId = std::uint32_t;
using Milliseconds = std::uint64_t;
using Waitables = std::span<const std::shared_ptr<Waitable>>;

/// Something that the machine does at its time, under the scheduler's lock. It may signal, reset and schedule through
/// the core that it is given; it must not call the scheduler, and takes no lock that is ever held over such a call.
using Action = std::function<void(Core&)>;
/// Names a scheduled action, for `cancel`.
using ActionId = std::uint64_t;

/// Which of two things due at one instant comes first: what the machine does, or the end of a wait. So a process that
/// ends at the very instant of a wait's limit counts as ended.
enum class Rank : std::uint8_t { happening, limit };

enum class Pace : std::uint8_t {
  serial,    // one thread runs at a time, first in, first out: each run gives the same trace
  parallel,  // all that may run do; times are the same in each run, the order inside one instant is not
  real,      // parallel, and the clock is the steady clock: nothing is skipped
};

/// All state and every decision of the machine's scheduler. It never blocks and knows no real thread: `Scheduler` puts
/// the lock and the blocking around it. A thread is ready (it waits for the right to run), running or parked.
class Core {
 public:
  explicit Core(Pace pace) : pace_(pace) {}

  /// The clock: since the machine was made.
  [[nodiscard]] Milliseconds now() const { return now_; }

  /// Books a place: the thread is ready. `id` is new and not 0; `end` is signalled when it leaves.
  void add(ThreadId id, std::wstring name, std::shared_ptr<Waitable> end);
  /// The running thread ends, or a ready one is given up.
  void leave(ThreadId id);
  /// Whether the thread has the right to run.
  [[nodiscard]] bool runs(ThreadId id) const;
  [[nodiscard]] bool empty() const { return threads_.empty(); }

  /// The running thread waits: the result when it is there at once, otherwise the thread is parked and its result is
  /// told by `result` when it runs again. Results are those of `ports::wait_result`. Nothing to wait for is a sleep.
  [[nodiscard]] std::optional<std::uint32_t> wait(ThreadId id, Waitables objects, bool all, std::uint32_t timeout);
  [[nodiscard]] std::uint32_t result(ThreadId id) const;
  /// The running thread goes behind all that are ready.
  void yield(ThreadId id);
  /// The running thread looked at something that did not block it. Too much of it lets others run (where `may_yield`)
  /// and then moves the clock by force, or a loop on the tick count would stop the clock for ever.
  void spin(ThreadId id, bool may_yield);

  /// Serves the parked waits at once, oldest first: a pulse is seen by all that are parked.
  void signal(Waitable& object);
  static void reset(Waitable& object) { object.signalled = false; }

  /// Books an action. `when` is on this clock; what is past is due at once.
  ActionId schedule(Milliseconds when, Action action, Rank rank = Rank::happening);
  /// Books an action that repeats. Repeating actions alone do not keep the machine going: see `stalled`.
  ActionId schedule_every(std::uint32_t period, Action action);
  /// False when it was done already.
  bool cancel(ActionId id);

  /// The clock stands still between the two; they nest.
  void hold() { ++held_; }
  void release() { --held_; }

  /// To be called after every change: gives ready threads the right to run, and moves the clock when nobody may.
  void dispatch();
  /// The threads that got the right to run since the last call.
  [[nodiscard]] std::vector<ThreadId> take_granted();

  /// Moves the clock to `to` and does all that is due by then.
  void advance(Milliseconds to);
  [[nodiscard]] std::optional<Milliseconds> next_due() const;

  /// Why nothing can go on, for people: nothing is due, or nothing before the horizon, or only repeating actions have
  /// been for an hour. `fail_waits` ends it: every parked wait gives `failed`.
  [[nodiscard]] const std::optional<std::wstring>& stalled() const { return stalled_; }
  void fail_waits();
  /// While closing, every wait fails instead of parking, and there are no stalls.
  void close(bool closing);

  /// Changes with everything that happens.
  [[nodiscard]] std::uint64_t progress() const { return progress_; }
  /// Every thread and what it waits for, for people.
  [[nodiscard]] std::wstring describe() const;

  static constexpr Milliseconds horizon = 24ull * 60 * 60 * 1000;
  static constexpr Milliseconds idle_limit = 60ull * 60 * 1000;

 private:
  enum class State : std::uint8_t { ready, running, parked };
  struct Key {
    Milliseconds when;
    Rank rank;
    ActionId number;
    auto operator<=>(const Key&) const = default;
  };
  struct Happening {
    Action action;
    ThreadId waiter = 0;  // a wait's limit has no action
    std::uint32_t period = 0;
  };
  struct Thread {
    std::wstring name;
    std::shared_ptr<Waitable> end;
    State state = State::ready;
    std::vector<std::shared_ptr<Waitable>> objects;
    bool all = false;
    std::optional<Key> limit;
    std::uint32_t result = 0;
    std::uint32_t spins = 0;
    Milliseconds step = 1;
    bool yield_due = false;
  };

  [[nodiscard]] static std::optional<std::uint32_t> look(Waitables objects, bool all);
  void park(ThreadId id, Thread& thread);
  void wake(ThreadId id, std::uint32_t result);
  void grant();
  [[nodiscard]] bool quiet() const;
  [[nodiscard]] bool out_of_future();
  [[nodiscard]] bool only_timers() const;
  void take_next();
  void force_clock(Thread& thread);
  Key book(Milliseconds when, Rank rank, Happening happening);
  void stall(std::wstring why);

  Pace pace_;
  Milliseconds now_ = 0;
  std::map<Key, Happening> due_;
  Milliseconds last_single_ = 0;  // when something happened that does not repeat
  ActionId last_number_ = 0;
  std::map<ThreadId, Thread> threads_;
  std::deque<ThreadId> ready_;
  std::vector<ThreadId> parked_;  // oldest first
  std::vector<ThreadId> granted_;
  std::size_t running_ = 0;
  int held_ = 0;
  bool closing_ = false;
  std::uint64_t progress_ = 0;
  std::optional<std::wstring> stalled_;
};

}  // namespace machine
