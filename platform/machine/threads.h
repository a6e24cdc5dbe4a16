#pragma once

#include <cstdint>
#include <memory>

#include "platform/ports/threads.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;
class Ids;
class Scheduler;

/// Threads of the machine's own process.
class Threads final : public ports::Threads {
 public:
  Threads(Scheduler& scheduler, HandleTable& handles, Ids& ids, ports::Errors& errors)
      : scheduler_(scheduler), handles_(handles), ids_(ids), errors_(errors) {}

  [[nodiscard]] ports::Handle start(std::unique_ptr<ports::ThreadBody> body, std::uint32_t& id) override;
  /// 0 on a thread that is not the machine's.
  [[nodiscard]] std::uint32_t current_id() override;
  void sleep(std::uint32_t milliseconds) override;

 private:
  Scheduler& scheduler_;
  HandleTable& handles_;
  Ids& ids_;
  ports::Errors& errors_;
};

}  // namespace machine
