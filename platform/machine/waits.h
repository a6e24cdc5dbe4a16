#pragma once

#include <cstdint>
#include <span>

#include "platform/ports/threads.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;
class NamedObjects;
class Scheduler;

/// Events, waits and the closing of handles.
class Waits final : public ports::Waits {
 public:
  Waits(Scheduler& scheduler, HandleTable& handles, NamedObjects& names, ports::Errors& errors)
      : scheduler_(scheduler), handles_(handles), names_(names), errors_(errors) {}

  [[nodiscard]] ports::Handle create_event(bool manual_reset, bool initial_state, const wchar_t* name) override;
  bool set(ports::Handle event) override;
  bool reset(ports::Handle event) override;
  /// A stall of the machine also gives `failed`, with gen_failure.
  [[nodiscard]] std::uint32_t wait(std::span<const ports::Handle> handles, bool all,
                                   std::uint32_t milliseconds) override;
  bool close(ports::Handle handle) override;

 private:
  Scheduler& scheduler_;
  HandleTable& handles_;
  NamedObjects& names_;
  ports::Errors& errors_;
};

}  // namespace machine
