#include "platform/ports/system.h"

#include <cstdlib>

namespace ports {

namespace {
// Constant-initialised, so that it stands before any code of the process runs.
constinit const System* bound = nullptr;
}  // namespace

void bind(const System& system) {
  bound = &system;
}

void unbind() {
  bound = nullptr;
}

const System& system() {
  if (bound == nullptr) std::abort();
  return *bound;
}

}  // namespace ports
