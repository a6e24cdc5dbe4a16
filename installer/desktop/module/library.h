#pragma once

#include <span>

#include "ky/factories.h"
#include "platform/ports/modules.h"

/// The command library as a whole: its attachment to a host and its table of factories.
namespace ky::library {

/// All exported factories, in the order of their stems.
[[nodiscard]] std::span<const NamedFactory> factories();

/// Binds the host's `Get` and `Put`, found by name in the process's main module. False when either is missing: the
/// library then refuses to load.
[[nodiscard]] bool attach(ports::Modules& modules);

}  // namespace ky::library
