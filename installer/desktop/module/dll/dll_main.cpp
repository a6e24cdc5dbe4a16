#include <cstdint>

#include "installer/desktop/module/library.h"
#include "platform/ports/build.h"

namespace {
constexpr std::uint32_t process_attach = 1;
}

/// The library's entry, called by the system under its loader lock. It fails where the main module does not export both
/// `Get` and `Put`; the module then does not load. Other notifications do nothing.
extern "C" std::int32_t DllMain(void* own_module, std::uint32_t reason, void*) {
  if (reason != process_attach) return 1;
  const ports::System* const world =
      ports::real_system(static_cast<ports::Module>(reinterpret_cast<std::uintptr_t>(own_module)));
  if (world == nullptr) return 0;
  ports::bind(*world);
  return ky::library::attach(world->modules) ? 1 : 0;
}
