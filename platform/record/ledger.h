#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/ports/mutex.h"
#include "platform/ports/system.h"
#include "platform/record/change.h"
#include "platform/record/look.h"

namespace record {

/// The book of a recorder: what was touched and how it stood before, what was done, and which path an open handle
/// means. Any thread; its lock is never held while it looks at the system. Nothing here touches the thread's last
/// error, which taking a lock does on Windows.
class Ledger {
 public:
  /// What an entry is about. A file's content is watched apart from the file: reading it is dear and seldom needed.
  enum class Subject { path, content, key, value, hive, task, driver, booking };
  /// Gives a thing's present state.
  using Look = std::function<std::optional<State>()>;

  explicit Ledger(const ports::System& inner) : inner_(inner) {}

  /// To be called before a change: looks, unless the thing is known already.
  void touch(Subject subject, const std::wstring& path, Look look);
  /// The same for a thing whose former state is known.
  void touch_known(Subject subject, const std::wstring& path, std::optional<State> before, Look look);
  void watch_path(const std::wstring& path);
  void watch_content(const std::wstring& path);
  void watch_key(const KeyPlace& place);
  void watch_value(const KeyPlace& place, const std::wstring& name);

  /// The key that a hive was mounted as or unmounted from just now.
  void note_hive(const KeyPlace& place, bool mounted);
  void watch_task(const std::wstring& path);
  void watch_driver(const std::wstring& inf);
  /// Keys and values below a key are about to go out of reach: how they stand now is how they end. To be called before
  /// an unmounting; `unsettle` takes it back where that fails, and when the hive is mounted again.
  void settle(const std::wstring& key);
  void unsettle(const std::wstring& key);

  void add_action(std::string kind, std::wstring text);
  /// `subject` tells where to look whether the thing is gone.
  void add_deletion(Subject subject, const std::string& kind, const std::wstring& path, ports::ErrorCode code,
                    Look look);
  void add_path_deletion(const std::string& kind, const std::wstring& path, ports::ErrorCode code);
  void add_move(const std::wstring& from, const std::wstring& to);
  /// Moves booked for the next start, by what moves.
  void book(const std::wstring& path, std::wstring text);

  /// A log's file, which this run writes or else prunes: from now on it is no change.
  void add_log(const std::wstring& path, bool written);
  /// True for a file that this run wrote its log to.
  [[nodiscard]] bool is_own_log(const std::wstring& path) const;

  void name(ports::Handle handle, std::wstring text);
  [[nodiscard]] std::optional<std::wstring> named(ports::Handle handle) const;
  void forget(ports::Handle handle);
  void place(ports::RegistryKey key, KeyPlace place);
  /// Where a key stands; nothing for one that was not opened through the recorder.
  [[nodiscard]] std::optional<KeyPlace> placed(ports::RegistryKey key) const;
  void forget(ports::RegistryKey key);

  void pause();
  void resume();
  [[nodiscard]] bool paused() const;

  [[nodiscard]] std::vector<Change> changes() const;
  [[nodiscard]] std::vector<Action> actions() const;
  [[nodiscard]] std::vector<Deletion> deletions() const;
  [[nodiscard]] std::vector<Move> moves() const;
  [[nodiscard]] std::vector<LogFile> logs() const;

 private:
  using Id = std::pair<Subject, std::wstring>;
  struct Entry {
    std::wstring path;
    std::optional<State> before;
    Look look;
    /// How it ended, where it cannot be looked at any more.
    std::optional<std::optional<State>> settled{};
    [[nodiscard]] std::optional<State> state() const { return settled ? *settled : look(); }
  };
  struct Log {
    std::wstring path;
    bool written;
  };
  struct Attempt {
    Deletion deletion;
    Look look;
    std::optional<bool> settled{};
  };

  const ports::System& inner_;
  mutable ports::Mutex mutex_;
  std::map<Id, Entry> entries_ KY_GUARDED_BY(mutex_);
  std::map<std::wstring, Log> logs_ KY_GUARDED_BY(mutex_);  // by folded path
  std::vector<Action> actions_ KY_GUARDED_BY(mutex_);
  std::vector<Move> moves_ KY_GUARDED_BY(mutex_);
  std::vector<Attempt> attempts_ KY_GUARDED_BY(mutex_);
  std::map<Id, std::size_t> attempt_of_ KY_GUARDED_BY(mutex_);
  std::map<ports::Handle, std::wstring> names_ KY_GUARDED_BY(mutex_);
  std::map<ports::RegistryKey, KeyPlace> places_ KY_GUARDED_BY(mutex_);
  std::map<std::thread::id, int> pauses_ KY_GUARDED_BY(mutex_);
};

/// Puts the calling thread's last error back at the end of its scope.
class KeptError {
 public:
  explicit KeptError(ports::Errors& errors) : errors_(errors), code_(errors.last()) {}
  ~KeptError() { errors_.set_last(code_); }
  KeptError(const KeptError&) = delete;
  KeptError& operator=(const KeptError&) = delete;

 private:
  ports::Errors& errors_;
  ports::ErrorCode code_;
};

/// How changes name a value.
[[nodiscard]] std::wstring value_path(const KeyPlace& place, const std::wstring& name);

/// The changes between two states of one thing: none, one, or two where it became another kind of thing.
void add_difference(std::vector<Change>& changes, const std::wstring& path, const std::optional<State>& before,
                    const std::optional<State>& after);

}  // namespace record
