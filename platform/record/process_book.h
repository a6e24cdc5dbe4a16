#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/inspection.h"
#include "platform/ports/mutex.h"
#include "platform/ports/system.h"
#include "platform/record/seen_process.h"

namespace record {

/// What a run found out about other processes, and did to them, by way of their handles. Only those count that a list
/// of processes named, and whose path was asked for or which were opened to be waited for or terminated. This process
/// never does. Any thread; the lock is never held while it asks the system, and the thread's last error stays.
class ProcessBook {
 public:
  explicit ProcessBook(const ports::System& inner) : inner_(inner) {}

  /// What a handle was opened for.
  struct Hold {
    std::uint32_t id = 0;
    std::optional<std::size_t> entry;  // where it may wait or terminate
  };

  void listed(const ports::ProcessRow& row);
  /// The answer to `open`: a handle, or null with its code.
  void opened(std::uint32_t access, std::uint32_t id, ports::Handle handle, ports::ErrorCode code);
  /// The answer to a question for the path: empty with its code where there is none.
  void path_read(ports::Handle handle, const std::wstring& path, ports::ErrorCode code);
  /// The next to be opened may be this one, for its command line: that says nothing of its path.
  void parent_told(std::uint32_t id);
  void waiting(std::span<const ports::Handle> handles);
  /// The answer to `terminate`; 0 where the system took it.
  void terminated(ports::Handle handle, ports::ErrorCode code);

  /// To be called before a handle is closed, and what was forgotten handed back where that failed.
  [[nodiscard]] std::optional<Hold> forget(ports::Handle handle);
  void restore(ports::Handle handle, const Hold& hold);

  /// What the handle's process is called: its path where that is known, else its name.
  [[nodiscard]] std::wstring called(ports::Handle handle) const;

  /// In the order in which they were first met, as they stand now.
  [[nodiscard]] std::vector<SeenProcess> seen() const;

 private:
  struct Entry {
    SeenProcess process;
    ports::Handle held = ports::Handle::null;
    bool waited = false;
    bool settled = false;  // it has ended: its id may mean another one
  };

  [[nodiscard]] std::optional<std::size_t> entry_of(std::uint32_t id) KY_REQUIRES(mutex_);
  [[nodiscard]] bool has_ended(ports::Handle handle) const;
  [[nodiscard]] std::map<std::uint32_t, std::wstring> running() const;

  const ports::System& inner_;
  mutable ports::Mutex mutex_;
  std::map<std::uint32_t, std::wstring> names_ KY_GUARDED_BY(mutex_);
  std::map<ports::Handle, Hold> holds_ KY_GUARDED_BY(mutex_);
  std::vector<Entry> entries_ KY_GUARDED_BY(mutex_);
  std::uint32_t parent_ KY_GUARDED_BY(mutex_) = 0;
};

}  // namespace record
