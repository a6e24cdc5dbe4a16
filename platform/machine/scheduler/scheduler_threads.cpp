// How real threads become the machine's own and leave it again.
#include <system_error>
#include <utility>

#include "platform/machine/scheduler/scheduler.h"

namespace machine {

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

}  // namespace machine
