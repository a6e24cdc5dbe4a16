#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include "platform/machine/scheduler/waitable.h"
#include "platform/ports/mutex.h"
#include "platform/ports/types.h"

namespace machine {

enum class ObjectKind {
  event,
  thread,
  process,
  file,
  search,
  process_list,
  token,
  certificate_store,
  signed_message,
  certificate,
  other,
};

/// What a handle stands for. Derive from it to hold more; the object goes with its last handle (and last user).
class Object {
 public:
  explicit Object(ObjectKind kind, std::shared_ptr<Waitable> waitable = nullptr, bool may_wait = true)
      : kind_(kind), waitable_(std::move(waitable)), may_wait_(may_wait) {}
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  [[nodiscard]] ObjectKind kind() const { return kind_; }
  /// Null for what cannot be waited for.
  [[nodiscard]] const std::shared_ptr<Waitable>& waitable() const { return waitable_; }
  /// Whether the handle gives the right to wait.
  [[nodiscard]] bool may_wait() const { return may_wait_; }

 private:
  ObjectKind kind_;
  std::shared_ptr<Waitable> waitable_;
  bool may_wait_;
};

/// The process's handles. Values are multiples of 4 and, unlike the real system's, never used twice, so that the use of
/// a closed handle always shows. Safe for any thread.
class HandleTable {
 public:
  [[nodiscard]] ports::Handle open(std::shared_ptr<Object> object);

  /// Null for a handle that is not open.
  [[nodiscard]] std::shared_ptr<Object> find(ports::Handle handle) const;
  /// Null also for an object of another class.
  template <class T>
  [[nodiscard]] std::shared_ptr<T> find_as(ports::Handle handle) const {
    return std::dynamic_pointer_cast<T>(find(handle));
  }

  /// Gives the object that the handle stood for, null when it was not open. The object's destructor therefore runs at
  /// the caller, without the table's lock.
  std::shared_ptr<Object> close(ports::Handle handle);

  /// How many handles are open, by kind; kinds without any are left out. A test's leak check.
  [[nodiscard]] std::map<ObjectKind, std::size_t> open_by_kind() const;

 private:
  mutable ports::Mutex mutex_;
  std::map<ports::Handle, std::shared_ptr<Object>> objects_ KY_GUARDED_BY(mutex_);
  std::uintptr_t last_ KY_GUARDED_BY(mutex_) = 0;
};

}  // namespace machine
