#include "platform/win32/driver_store.h"

#include "platform/win32/native_api.h"

namespace win32 {

bool DriverStore::inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) {
  DWORD wanted = 0;
  const bool done = SetupGetInfDriverStoreLocationW(inf, nullptr, nullptr, into.empty() ? nullptr : into.data(),
                                                    static_cast<DWORD>(into.size()), &wanted) != FALSE;
  required = wanted;
  return done;
}

}  // namespace win32
