#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ports/mutex.h"

namespace ports {
class Modules;
class Waits;
}  // namespace ports

namespace host {

/// One key of the store as it stood at a moment.
struct StoredKey {
  std::string name;
  std::uint64_t value = 0;
  friend bool operator==(const StoredKey&, const StoredKey&) = default;
};

/// The process-wide map of named 64-bit values. Every operation but `release_all` may be called on any thread at any
/// time. The prefix of a key tells what its value is (`int_`, `String_`, `SelfFree_`, `HANDLE_`, `HMODULE_`); until the
/// release the store itself looks at none of them.
class Store {
 public:
  Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  /// The key's value; 0 for one that was never put, or was put with 0.
  [[nodiscard]] std::uint64_t get(std::string_view key) const;

  /// Replaces the key's value. The old one is neither released nor closed.
  void put(std::string_view key, std::uint64_t value);

  /// How often the key was put so far: tells whether a command wrote it, also where it wrote the same value again.
  [[nodiscard]] std::uint64_t times_put(std::string_view key) const;

  /// All keys in the order of their first put, emptied ones too.
  [[nodiscard]] std::vector<StoredKey> keys() const;

  /// Gives back what the store still holds, each key emptied before its value goes: objects and handles in the reverse
  /// order of their first put, then the log, into which the others still write, then the modules, whose code the
  /// objects needed, and last the Decrypter. What has no prefix belongs to whoever put it and stays. The program
  /// itself, where a module key names it, is not unloaded. No other thread uses the store any more; a released object
  /// may.
  void release_all(ports::Waits& waits, ports::Modules& modules);

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };
  struct Entry {
    std::string name;
    std::uint64_t value = 0;
    std::uint64_t times_put = 0;
  };

  std::uint64_t take(std::string_view key);
  [[nodiscard]] const Entry* find(std::string_view key) const KY_REQUIRES(mutex_);

  mutable ports::Mutex mutex_;
  std::vector<Entry> entries_ KY_GUARDED_BY(mutex_);
  std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> positions_ KY_GUARDED_BY(mutex_);
};

}  // namespace host
