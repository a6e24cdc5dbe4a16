#pragma once

#include <span>

#include "host/factories.h"

namespace host {

/// The commands that the host itself brings, beside those of the command library.
[[nodiscard]] std::span<const NamedFactory> own_commands();

}  // namespace host
