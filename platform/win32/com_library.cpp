#include "platform/win32/com_library.h"

#include <windows.h>

#include <objbase.h>

namespace win32 {

ports::Result Com::initialize(ports::ComModel model) {
  return CoInitializeEx(nullptr, static_cast<DWORD>(model));
}

void Com::uninitialize() {
  CoUninitialize();
}

ports::Result Com::initialize_security(std::uint32_t authentication_level, std::uint32_t impersonation_level) {
  return CoInitializeSecurity(nullptr, -1, nullptr, nullptr, authentication_level, impersonation_level, nullptr,
                              EOAC_NONE, nullptr);
}

}  // namespace win32
