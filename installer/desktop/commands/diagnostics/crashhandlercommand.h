#pragma once

#include <cstdint>

#include "ky/install_command.h"

namespace ky {

/// Sees to it that a crash of the process leaves two dumps behind, see `diagnostics::dump_filter`; a bad argument to a
/// bounds-checked function counts as one.
///
/// Deliberately outside the standard shape: the guard stays entered, as the handlers stay for the life of the process,
/// and there is no end line.
///
/// Attributes: none
/// Keys read: none
/// Keys written: none
/// Results: 0; 1359 when another thread is inside or has been
class CCrashHandlerCommand final : public Destroyable<CCrashHandlerCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
};

}  // namespace ky
