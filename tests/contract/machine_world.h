#pragma once

#include <memory>

#include "tests/contract/world.h"

namespace contract {

/// Whether this build's engines are Wine's; each build answers it for itself.
[[nodiscard]] bool engines_are_wine();

/// A bare machine with the build's engines.
[[nodiscard]] std::unique_ptr<World> make_machine_world();

}  // namespace contract
