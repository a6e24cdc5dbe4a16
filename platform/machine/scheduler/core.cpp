#include "platform/machine/scheduler/core.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/ports/threads.h"

namespace machine {

namespace {

constexpr std::uint32_t spins_before_yield = 64;
constexpr std::uint32_t spins_before_move = 10'000;
constexpr Milliseconds longest_step = 1'000;

void consume(Waitable& object) {
  if (object.kind == WaitableKind::auto_event) object.signalled = false;
}

bool up(const std::shared_ptr<Waitable>& object) {
  return object->signalled;
}

}  // namespace

void Core::add(ThreadId id, std::wstring name, std::shared_ptr<Waitable> end) {
  Thread thread;
  thread.name = std::move(name);
  thread.end = std::move(end);
  if (id == 0 || !threads_.emplace(id, std::move(thread)).second) std::abort();
  ready_.push_back(id);
  ++progress_;
}

void Core::leave(ThreadId id) {
  const auto found = threads_.find(id);
  if (found == threads_.end() || found->second.state == State::parked) std::abort();
  if (found->second.state == State::running) {
    --running_;
  } else {
    ready_.erase(std::find(ready_.begin(), ready_.end(), id));
  }
  const std::shared_ptr<Waitable> end = std::move(found->second.end);
  threads_.erase(found);
  signal(*end);
}

bool Core::runs(ThreadId id) const {
  const auto found = threads_.find(id);
  return found != threads_.end() && found->second.state == State::running;
}

std::optional<std::uint32_t> Core::look(Waitables objects, bool all) {
  if (objects.empty()) return std::nullopt;
  if (all) {
    if (!std::all_of(objects.begin(), objects.end(), up)) return std::nullopt;
    for (const auto& object : objects) consume(*object);
    return ports::wait_result::object_0;
  }
  const auto first = std::find_if(objects.begin(), objects.end(), up);
  if (first == objects.end()) return std::nullopt;
  consume(**first);
  return ports::wait_result::object_0 + static_cast<std::uint32_t>(first - objects.begin());
}

std::optional<std::uint32_t> Core::wait(ThreadId id, Waitables objects, bool all, std::uint32_t timeout) {
  if (const auto result = look(objects, all)) return result;
  if (timeout == 0) return ports::wait_result::timeout;
  if (closing_) return ports::wait_result::failed;
  Thread& thread = threads_.at(id);
  thread.objects.assign(objects.begin(), objects.end());
  thread.all = all;
  if (timeout != ports::infinite) {
    Happening end_of_wait;
    end_of_wait.waiter = id;
    thread.limit = book(now_ + timeout, Rank::limit, std::move(end_of_wait));
  }
  park(id, thread);
  return std::nullopt;
}

std::uint32_t Core::result(ThreadId id) const {
  return threads_.at(id).result;
}

void Core::park(ThreadId id, Thread& thread) {
  thread.state = State::parked;
  thread.spins = 0;
  thread.step = 1;
  thread.yield_due = false;
  --running_;
  parked_.push_back(id);
  ++progress_;
}

void Core::wake(ThreadId id, std::uint32_t result) {
  Thread& thread = threads_.at(id);
  thread.state = State::ready;
  thread.result = result;
  thread.objects.clear();
  if (thread.limit) due_.erase(*thread.limit);
  thread.limit.reset();
  parked_.erase(std::find(parked_.begin(), parked_.end(), id));
  ready_.push_back(id);
  ++progress_;
}

void Core::yield(ThreadId id) {
  if (ready_.empty()) return;
  threads_.at(id).state = State::ready;
  --running_;
  ready_.push_back(id);
  ++progress_;
}

void Core::spin(ThreadId id, bool may_yield) {
  if (pace_ == Pace::real) return;
  Thread& thread = threads_.at(id);
  ++thread.spins;
  if (thread.spins % spins_before_yield == 0) thread.yield_due = true;
  if (thread.spins % spins_before_move == 0) force_clock(thread);
  if (!may_yield || !thread.yield_due) return;
  thread.yield_due = false;
  yield(id);
}

// In small steps that double: a loop on the tick count ends about when it wants to, and a long run that merely reads
// the clock often does not make other threads' waits run out.
void Core::force_clock(Thread& thread) {
  if (held_ > 0 || stalled_) return;
  if (now_ >= horizon) {
    if (!closing_) stall(L"a thread runs on for a day without waiting");
    return;
  }
  Milliseconds to = now_ + thread.step;
  thread.step = std::min(thread.step * 2, longest_step);
  if (!due_.empty()) to = std::min(to, due_.begin()->first.when);
  advance(to);
}

void Core::signal(Waitable& object) {
  object.signalled = true;
  ++progress_;
  for (std::size_t i = 0; i < parked_.size() && object.signalled;) {
    const ThreadId id = parked_[i];
    const Thread& thread = threads_.at(id);
    if (const auto result = look(thread.objects, thread.all)) {
      wake(id, *result);  // leaves `parked_`
    } else {
      ++i;
    }
  }
}

Core::Key Core::book(Milliseconds when, Rank rank, Happening happening) {
  const Key key{when, rank, ++last_number_};
  if (happening.period == 0) last_single_ = now_;
  due_.emplace(key, std::move(happening));
  ++progress_;
  return key;
}

ActionId Core::schedule(Milliseconds when, Action action, Rank rank) {
  Happening happening;
  happening.action = std::move(action);
  return book(when, rank, std::move(happening)).number;
}

ActionId Core::schedule_every(std::uint32_t period, Action action) {
  Happening happening;
  happening.action = std::move(action);
  happening.period = std::max<std::uint32_t>(period, 1);
  const Milliseconds first = now_ + happening.period;
  return book(first, Rank::happening, std::move(happening)).number;
}

bool Core::cancel(ActionId id) {
  const auto found = std::find_if(due_.begin(), due_.end(), [id](const auto& entry) {
    return entry.first.number == id && entry.second.waiter == 0;
  });
  if (found == due_.end()) return false;
  due_.erase(found);
  ++progress_;
  return true;
}

void Core::take_next() {
  auto node = due_.extract(due_.begin());
  const Key key = node.key();
  now_ = std::max(now_, key.when);
  ++progress_;
  if (node.mapped().period != 0) {
    // Booked again before it is done, since it may cancel itself. What was missed is not made up for.
    const Action action = node.mapped().action;
    node.key().when = key.when + node.mapped().period;
    if (node.key().when <= now_) node.key().when = now_ + node.mapped().period;
    due_.insert(std::move(node));
    action(*this);
    return;
  }
  last_single_ = now_;
  if (node.mapped().waiter == 0) {
    node.mapped().action(*this);
    return;
  }
  threads_.at(node.mapped().waiter).limit.reset();
  wake(node.mapped().waiter, ports::wait_result::timeout);
}

void Core::grant() {
  while (!ready_.empty() && (pace_ != Pace::serial || running_ == 0)) {
    const ThreadId id = ready_.front();
    ready_.pop_front();
    threads_.at(id).state = State::running;
    ++running_;
    granted_.push_back(id);
    ++progress_;
  }
}

bool Core::quiet() const {
  return running_ == 0 && ready_.empty() && held_ == 0 && !threads_.empty() && !closing_ && !stalled_;
}

void Core::dispatch() {
  grant();
  while (quiet() && !out_of_future()) {
    if (pace_ == Pace::real) return;  // `advance` does it in time
    if (pace_ == Pace::serial) {
      take_next();
    } else {
      advance(due_.begin()->first.when);  // all of one instant at once
    }
    grant();
  }
}

bool Core::out_of_future() {
  if (due_.empty()) {
    stall(L"all threads wait and nothing is due");
  } else if (pace_ == Pace::real) {
    return false;
  } else if (due_.begin()->first.when > horizon) {
    stall(L"nothing more is due within a day");
  } else if (due_.begin()->first.when > last_single_ + idle_limit && only_timers()) {
    stall(L"only timers are due: the machine waits for the user");
  }
  return stalled_.has_value();
}

bool Core::only_timers() const {
  return std::all_of(due_.begin(), due_.end(),
                     [](const auto& entry) { return entry.second.period != 0 || entry.first.when > horizon; });
}

std::vector<ThreadId> Core::take_granted() {
  return std::exchange(granted_, {});
}

void Core::advance(Milliseconds to) {
  now_ = std::max(now_, to);
  while (!due_.empty() && due_.begin()->first.when <= now_) take_next();
}

std::optional<Milliseconds> Core::next_due() const {
  if (due_.empty()) return std::nullopt;
  return due_.begin()->first.when;
}

void Core::stall(std::wstring why) {
  stalled_ = std::move(why) + L'\n' + describe();
}

void Core::fail_waits() {
  stalled_.reset();
  while (!parked_.empty()) wake(parked_.front(), ports::wait_result::failed);
}

void Core::close(bool closing) {
  closing_ = closing;
  if (closing) fail_waits();
}

std::wstring Core::describe() const {
  std::wstring text = L"at " + std::to_wstring(now_) + L" ms, " + std::to_wstring(due_.size()) + L" due, " +
                      std::to_wstring(held_) + L" holding the clock\n";
  for (const auto& [id, thread] : threads_) {
    text += L"thread " + std::to_wstring(id) + L" (" + thread.name + L")";
    if (thread.state != State::parked) {
      text += thread.state == State::running ? L" runs\n" : L" is ready\n";
      continue;
    }
    text += thread.objects.empty() ? L" sleeps" : thread.all ? L" waits for all of" : L" waits for";
    const wchar_t* separator = L" ";
    for (const auto& object : thread.objects) text += std::exchange(separator, L", ") + object->label;
    text += thread.limit ? L" until " + std::to_wstring(thread.limit->when) + L" ms\n" : L" without limit\n";
  }
  return text;
}

}  // namespace machine
