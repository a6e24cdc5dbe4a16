#pragma once

#include "ky/install_command.h"

namespace ky {

/// Does nothing: a landing place for jumps and a carrier of `next`.
///
/// Attributes: none of its own
/// Keys read: none
/// Keys written: none
/// Results: 0; 1359 when another thread is inside
class CNopCommand final : public Destroyable<CNopCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
};

}  // namespace ky
