#pragma once

#include "platform/ports/threads.h"

namespace win32 {

class Threads final : public ports::Threads {
 public:
  ports::Handle start(std::unique_ptr<ports::ThreadBody> body, std::uint32_t& id) override;
  std::uint32_t current_id() override;
  void sleep(std::uint32_t milliseconds) override;
};

class Waits final : public ports::Waits {
 public:
  ports::Handle create_event(bool manual_reset, bool initial_state, const wchar_t* name) override;
  bool set(ports::Handle event) override;
  bool reset(ports::Handle event) override;
  std::uint32_t wait(std::span<const ports::Handle> handles, bool all, std::uint32_t milliseconds) override;
  bool close(ports::Handle handle) override;
};

}  // namespace win32
