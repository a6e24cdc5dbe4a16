#include "installer/desktop/commands/flow/nopcommand.h"

#include "installer/desktop/commands/base/standard_shape.h"

namespace ky {

std::uint32_t CNopCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return InStandardShape(*this, guard, L"Nop", [] { return ports::code::success; });
}

}  // namespace ky
