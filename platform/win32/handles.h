#pragma once

#include <windows.h>

#include "platform/ports/types.h"

namespace win32 {

/// The system's form of the ports' handles.
[[nodiscard]] inline HANDLE native(ports::Handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}
[[nodiscard]] inline HMODULE native(ports::Module module) {
  return reinterpret_cast<HMODULE>(module);
}

[[nodiscard]] inline ports::Handle ported(HANDLE handle) {
  return static_cast<ports::Handle>(reinterpret_cast<std::uintptr_t>(handle));
}
[[nodiscard]] inline ports::Module ported(HMODULE module) {
  return static_cast<ports::Module>(reinterpret_cast<std::uintptr_t>(module));
}

}  // namespace win32
