#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// Annotations that clang's thread-safety analysis checks at compile time; other compilers see nothing.
#if defined(__clang__)
#define KY_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define KY_THREAD_ANNOTATION(x)
#endif

/// The field is touched only while the mutex is held.
#define KY_GUARDED_BY(mutex) KY_THREAD_ANNOTATION(guarded_by(mutex))
/// The function is called only while the mutex is held.
#define KY_REQUIRES(...) KY_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The function is called only while the mutex is not held.
#define KY_EXCLUDES(...) KY_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
/// The function gives a reference to the mutex.
#define KY_RETURN_CAPABILITY(mutex) KY_THREAD_ANNOTATION(lock_returned(mutex))

namespace ports {

/// How many `Mutex`es the calling thread holds. The machine's scheduler does not let others run from within a clock
/// read or a poll while this is not 0: the others might want that lock.
inline thread_local int locks_held = 0;

/// A plain lock: not recursive, unlocked by the thread that locked it.
class KY_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() KY_THREAD_ANNOTATION(acquire_capability()) {
    // Most are held for less time than it takes to fall asleep and be woken. Each look takes the lock's cache line
    // from its holder, hence the pauses.
    constexpr int looks = 100;
    bool taken = false;
    for (int i = 0; i < looks && !taken; ++i) {
      taken = mutex_.try_lock();
      if (!taken) pause();
    }
    if (!taken) mutex_.lock();
    ++locks_held;
  }
  void unlock() KY_THREAD_ANNOTATION(release_capability()) {
    --locks_held;
    mutex_.unlock();
  }
  [[nodiscard]] bool try_lock() KY_THREAD_ANNOTATION(try_acquire_capability(true)) {
    if (!mutex_.try_lock()) return false;
    ++locks_held;
    return true;
  }

 private:
  static void pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
    __builtin_ia32_pause();
#endif
  }

  std::mutex mutex_;
};

/// Holds a mutex for a scope.
class KY_THREAD_ANNOTATION(scoped_lockable) Lock {
 public:
  explicit Lock(Mutex& mutex) KY_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) { mutex_.lock(); }
  ~Lock() KY_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  Mutex& mutex_;
};

/// A condition that is waited for with a `Mutex`. There are no predicate waits, since the analysis looks at a lambda
/// alone: write `while (!ready) condition.wait(mutex);`.
class Condition {
 public:
  void wait(Mutex& mutex) KY_REQUIRES(mutex) { condition_.wait(mutex); }

  /// False when the time ran out; like any wake, it may also be spurious.
  [[nodiscard]] bool wait_until(Mutex& mutex, std::chrono::steady_clock::time_point limit) KY_REQUIRES(mutex) {
    return condition_.wait_until(mutex, limit) == std::cv_status::no_timeout;
  }

  void notify_one() { condition_.notify_one(); }
  void notify_all() { condition_.notify_all(); }

 private:
  std::condition_variable_any condition_;
};

}  // namespace ports
