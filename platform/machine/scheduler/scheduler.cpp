#include "platform/machine/scheduler/scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace machine {

namespace {
constexpr std::size_t most_stalls = 1'000;
}  // namespace

Scheduler::Hold::Hold(Scheduler& scheduler) : scheduler_(&scheduler) {
  const ports::Lock lock(scheduler.mutex_);
  scheduler.core_.hold();
}

Scheduler::Hold::~Hold() {
  if (scheduler_ == nullptr) return;
  const ports::Lock lock(scheduler_->mutex_);
  scheduler_->core_.release();
  scheduler_->settle();
}

Scheduler::Scheduler(SchedulerOptions options)
    : options_(std::move(options)), begin_(std::chrono::steady_clock::now()), core_(options_.pace) {}

ThreadId Scheduler::member() {
  const ThreadId id = current();
  if (!core_.runs(id)) give_up("a wait on a thread that is not the machine's, or while the machine has stalled");
  return id;
}

Milliseconds Scheduler::now() {
  if (options_.pace == Pace::real) {
    // As long as nothing is due, the time is all there is to know, and it takes no lock.
    if (const Milliseconds real = elapsed(); real < quiet_until_) return real;
  }
  const bool may_yield = ports::locks_held == 0;
  const ports::Lock lock(mutex_);
  spin(may_yield);
  return core_.now();
}

std::uint32_t Scheduler::wait(Waitables objects, bool all, std::uint32_t timeout) {
  const bool may_yield = ports::locks_held == 0;
  const ports::Lock lock(mutex_);
  catch_up();
  // Who tells of a stall may still ask how things stand.
  const ThreadId id = timeout == 0 && stalling_ ? current() : member();
  if (const auto result = core_.wait(id, objects, all, timeout)) {
    spin(may_yield);
    return *result;
  }
  settle();
  block(id);
  return core_.result(id);
}

void Scheduler::sleep(std::uint32_t milliseconds) {
  if (milliseconds != 0) {
    static_cast<void>(wait({}, false, milliseconds));
    return;
  }
  const ports::Lock lock(mutex_);
  const ThreadId id = member();
  spin(false);
  core_.yield(id);
  settle();
  block(id);
}

void Scheduler::signal(Waitable& object) {
  const ports::Lock lock(mutex_);
  catch_up();
  core_.signal(object);
  settle();
}

void Scheduler::reset(Waitable& object) {
  const ports::Lock lock(mutex_);
  Core::reset(object);
}

bool Scheduler::signalled(const Waitable& object) {
  const bool may_yield = ports::locks_held == 0;
  const ports::Lock lock(mutex_);
  spin(may_yield);
  return object.signalled;
}

ActionId Scheduler::schedule(Milliseconds when, Action action, Rank rank) {
  const ports::Lock lock(mutex_);
  catch_up();
  const ActionId id = core_.schedule(when, std::move(action), rank);
  settle();
  return id;
}

ActionId Scheduler::schedule_after(Milliseconds delay, Action action) {
  const ports::Lock lock(mutex_);
  catch_up();
  const ActionId id = core_.schedule(core_.now() + delay, std::move(action));
  settle();
  return id;
}

ActionId Scheduler::schedule_every(std::uint32_t period, Action action) {
  const ports::Lock lock(mutex_);
  catch_up();
  const ActionId id = core_.schedule_every(period, std::move(action));
  settle();
  return id;
}

bool Scheduler::cancel(ActionId id) {
  const ports::Lock lock(mutex_);
  const bool cancelled = core_.cancel(id);
  settle();
  return cancelled;
}

void Scheduler::perform(const Action& action) {
  const ports::Lock lock(mutex_);
  catch_up();
  action(core_);
  settle();
}

std::optional<std::wstring> Scheduler::stall() {
  const ports::Lock lock(mutex_);
  return first_stall_;
}

void Scheduler::spin(bool may_yield) {
  catch_up();
  const ThreadId id = current();
  // Not so on a foreign thread, and on one that handles a stall.
  const bool runs = core_.runs(id);
  if (runs) core_.spin(id, may_yield);
  settle();
  if (runs) block(id);
}

void Scheduler::catch_up() {
  if (options_.pace != Pace::real) return;
  core_.advance(elapsed());
}

Milliseconds Scheduler::elapsed() const {
  const auto real = std::chrono::steady_clock::now() - begin_;
  return static_cast<Milliseconds>(std::chrono::duration_cast<std::chrono::milliseconds>(real).count());
}

// Follows every change: decides who runs and wakes the real threads.
void Scheduler::settle() {
  core_.dispatch();
  while (core_.stalled() && !stalling_) {
    handle_stall();
    core_.dispatch();
  }
  for (const ThreadId id : core_.take_granted()) members_.at(id).condition.notify_one();
  if (options_.pace != Pace::real) return;
  const std::optional<Milliseconds> next = core_.next_due();
  quiet_until_ = next.value_or(std::numeric_limits<Milliseconds>::max());
  if (next_due_ == next) return;
  next_due_ = next;
  for (auto& [id, member] : members_) member.condition.notify_one();
}

void Scheduler::handle_stall() {
  const std::wstring why = *core_.stalled();
  if (!first_stall_) first_stall_ = why;
  if (++stalls_ > most_stalls) give_up("the machine stalls over and over");
  if (options_.on_stall) {
    stalling_ = true;
    core_.hold();
    mutex_.unlock();
    options_.on_stall(why);
    mutex_.lock();
    core_.release();
    stalling_ = false;
  }
  core_.fail_waits();
}

void Scheduler::block(ThreadId id) {
  if (core_.runs(id)) return;
  Member& me = members_.at(id);
  std::uint64_t progress = core_.progress();
  Instant watch = std::chrono::steady_clock::now() + options_.patience;
  while (!core_.runs(id)) {
    Instant until = watch;
    const bool real_due = options_.pace == Pace::real && core_.next_due().has_value();
    if (real_due) until = std::min(until, begin_ + std::chrono::milliseconds(*core_.next_due()));
    const bool in_time = me.condition.wait_until(mutex_, until);
    catch_up();
    settle();
    if (core_.progress() != progress || real_due) {
      progress = core_.progress();
      watch = std::chrono::steady_clock::now() + options_.patience;
    } else if (!in_time) {
      give_up("no progress");
    }
  }
}

void Scheduler::give_up(const char* why) {
  std::string text;
  for (const wchar_t unit : core_.describe()) text += unit < 0x80 ? static_cast<char>(unit) : '?';
  std::fprintf(stderr, "the machine's scheduler gives up: %s\n%s", why, text.c_str());
  std::abort();
}

}  // namespace machine
