#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/ports/mutex.h"

namespace diagnostics {

/// What each thread has, by the thread's id. An entry neither moves nor goes before the table does, and a look for it
/// takes no lock, so that threads which only come back to what they have do not meet.
template <class T>
class ThreadTable {
 public:
  /// Null where there is none.
  [[nodiscard]] T* find(std::uint32_t thread) {
    Entry* entry = row(thread).load(std::memory_order_acquire);
    while (entry != nullptr && entry->thread != thread) entry = entry->next;
    return entry == nullptr ? nullptr : &entry->value;
  }

  /// As a map's: true where the entry is new and took the value, which otherwise stays as it is.
  std::pair<T*, bool> try_emplace(std::uint32_t thread, T&& value) KY_EXCLUDES(mutex_) {
    const ports::Lock lock(mutex_);
    if (T* const known = find(thread)) return {known, false};
    std::atomic<Entry*>& head = row(thread);
    auto made = std::unique_ptr<Entry>(new Entry{thread, head.load(), std::move(value)});
    Entry* const entry = entries_.emplace_back(std::move(made)).get();
    head.store(entry, std::memory_order_release);
    return {&entry->value, true};
  }

  /// All entries, by rising ids.
  [[nodiscard]] std::map<std::uint32_t, T*> all() KY_EXCLUDES(mutex_) {
    const ports::Lock lock(mutex_);
    std::map<std::uint32_t, T*> found;
    for (const auto& entry : entries_) found.emplace(entry->thread, &entry->value);
    return found;
  }

 private:
  struct Entry {
    const std::uint32_t thread;
    Entry* const next;
    T value;
  };

  [[nodiscard]] std::atomic<Entry*>& row(std::uint32_t thread) { return rows_[thread / 4 % rows_.size()]; }

  std::array<std::atomic<Entry*>, 64> rows_{};  // ids of threads are multiples of four
  ports::Mutex mutex_;
  std::vector<std::unique_ptr<Entry>> entries_ KY_GUARDED_BY(mutex_);
};

}  // namespace diagnostics
