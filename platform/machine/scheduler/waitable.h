#pragma once

#include <string>
#include <utility>

namespace machine {

enum class WaitableKind {
  manual_event,  // stays signalled until it is reset
  auto_event,    // consumed by the one wait that it ends
  process,       // signalled for good when the process has ended
  thread,        // likewise
  queue,         // signalled while messages lie in it
};

/// What a wait looks at: plain data under the scheduler's lock. Owned by shared_ptr, since waits outlive handles.
struct Waitable {
  explicit Waitable(WaitableKind of_kind, std::wstring label_for_people, bool up = false)
      : kind(of_kind), label(std::move(label_for_people)), signalled(up) {}

  const WaitableKind kind;
  std::wstring label;  // "event 'refresh'", "process 'setup.exe' (id 412)"; set before the first wait
  bool signalled;      // changed through the scheduler alone
};

}  // namespace machine
