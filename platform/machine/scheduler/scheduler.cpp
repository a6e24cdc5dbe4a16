#include "platform/machine/scheduler/scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace machine {

namespace {
constexpr std::size_t most_stalls = 1'000;
}  // namespace

thread_local Scheduler::Place* Scheduler::Place::top_ = nullptr;

Scheduler::Place::Place(const Scheduler& its_owner, ThreadId its_id)
    : owner(its_owner), id(its_id), below_(std::exchange(top_, this)) {}

Scheduler::Place::~Place() {
  Place** link = &top_;
  while (*link != this) link = &(*link)->below_;
  *link = below_;
}

Scheduler::Entered::Entered(Scheduler& scheduler, ThreadId id, std::wstring name)
    : scheduler_(scheduler), place_(scheduler, id) {
  scheduler_.enter(id, std::move(name));
}

Scheduler::Entered::~Entered() {
  scheduler_.leave_entered(place_.id);
}

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

Scheduler::~Scheduler() {
  {
    const ports::Lock lock(mutex_);
    end_started();
  }
  join_ended();
}

void Scheduler::enter(ThreadId id, std::wstring name) {
  const ports::Lock lock(mutex_);
  members_.try_emplace(id);
  ++entered_;
  auto end = std::make_shared<Waitable>(WaitableKind::thread, L"thread " + std::to_wstring(id) + L" (" + name + L")");
  core_.add(id, std::move(name), std::move(end));
  settle();
  block(id);
}

void Scheduler::leave_entered(ThreadId id) {
  {
    const ports::Lock lock(mutex_);
    core_.leave(id);
    members_.erase(id);
    if (--entered_ == 0) {
      end_started();
    } else {
      settle();
    }
  }
  join_ended();
}

std::shared_ptr<Waitable> Scheduler::start(ThreadId id, std::wstring name, std::unique_ptr<ports::ThreadBody> body) {
  join_ended();
  auto end = std::make_shared<Waitable>(WaitableKind::thread, L"thread " + std::to_wstring(id) + L" (" + name + L")");
  const ports::Lock lock(mutex_);
  // The place is booked before the real thread is there: from here on the clock waits for it.
  core_.add(id, std::move(name), end);
  Member& member = members_.try_emplace(id).first->second;
  try {
    member.thread = std::thread([this, id, body = std::move(body)]() mutable { run(id, std::move(body)); });
  } catch (const std::system_error&) {
    core_.leave(id);
    members_.erase(id);
    return nullptr;
  }
  settle();
  return end;
}

void Scheduler::run(ThreadId id, std::unique_ptr<ports::ThreadBody> body) {
  const Place place(*this, id);
  {
    const ports::Lock lock(mutex_);
    block(id);
  }
  body->run();
  body.reset();
  const ports::Lock lock(mutex_);
  core_.leave(id);
  ended_.push_back(std::move(members_.at(id).thread));
  members_.erase(id);
  settle();
  member_gone_.notify_all();
}

// They have nothing more to do, so joining them is no wait.
void Scheduler::join_ended() {
  std::vector<std::thread> ended;
  {
    const ports::Lock lock(mutex_);
    ended.swap(ended_);
  }
  for (std::thread& thread : ended) thread.join();
}

void Scheduler::end_started() {
  core_.close(true);
  settle();
  Instant watch = std::chrono::steady_clock::now() + options_.patience;
  for (std::size_t left = members_.size(); !members_.empty();) {
    const bool in_time = member_gone_.wait_until(mutex_, watch);
    if (left != members_.size()) {
      left = members_.size();
      watch = std::chrono::steady_clock::now() + options_.patience;
    } else if (!in_time) {
      give_up("threads do not end though all their waits fail");
    }
  }
  core_.close(false);
}

ThreadId Scheduler::current() const {
  const Place* place = Place::top_;
  while (place != nullptr && &place->owner != this) place = place->below_;
  return place == nullptr ? 0 : place->id;
}

ThreadId Scheduler::member() {
  const ThreadId id = current();
  if (!core_.runs(id)) give_up("a wait on a thread that is not the machine's, or while the machine has stalled");
  return id;
}

Milliseconds Scheduler::now() {
  const bool may_yield = ports::locks_held == 0;
  const ports::Lock lock(mutex_);
  spin(may_yield);
  return core_.now();
}

std::uint32_t Scheduler::wait(Waitables objects, bool all, std::uint32_t timeout) {
  const bool may_yield = ports::locks_held == 0;
  const ports::Lock lock(mutex_);
  catch_up();
  const ThreadId id = member();
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
  const auto real = std::chrono::steady_clock::now() - begin_;
  core_.advance(static_cast<Milliseconds>(std::chrono::duration_cast<std::chrono::milliseconds>(real).count()));
}

// Follows every change: decides who runs and wakes the real threads.
void Scheduler::settle() {
  core_.dispatch();
  while (core_.stalled() && !stalling_) {
    handle_stall();
    core_.dispatch();
  }
  for (const ThreadId id : core_.take_granted()) members_.at(id).condition.notify_one();
  if (options_.pace != Pace::real || next_due_ == core_.next_due()) return;
  next_due_ = core_.next_due();
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
