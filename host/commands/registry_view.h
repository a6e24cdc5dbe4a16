#pragma once

#include <cstdint>

#include "installer/desktop/commands/base/global_data.h"
#include "platform/ports/registry.h"

namespace host {

/// The view in which keys are deleted: that of 64-bit programs where the script has found a 64-bit system, which is
/// where `RegKeyExists` looks as well, otherwise the process's own. What 32-bit programs see is deleted by the path
/// under which it lies there, so that the path in the script is the path that goes.
[[nodiscard]] inline std::uint32_t wanted_registry_view() {
  return ky::Get(ky::keys::int_x64) != 0 ? ports::registry_access::view_64 : 0;
}

}  // namespace host
