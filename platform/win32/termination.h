#pragma once

#include "platform/ports/termination.h"

namespace win32 {

/// The exception code of a deliberate stop, which is the process's exit code unless a filter chooses another. Bit 29
/// marks codes that are not the system's; the low byte is the kind plus 1.
[[nodiscard]] constexpr std::uint32_t stop_code(ports::StopKind kind) {
  return 0xE04B5900U + static_cast<std::uint32_t>(kind) + 1;
}

class Termination final : public ports::Termination {
 public:
  [[noreturn]] void stop(const ports::StopReason& reason) override;
  void step() override;
};

}  // namespace win32
