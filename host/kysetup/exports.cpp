#include "host/current_store.h"

// Found by name in this program when the command library loads.
extern "C" {

__declspec(dllexport) std::uint64_t Get(const char* key) {
  return host::get_current(key);
}

__declspec(dllexport) void Put(const char* key, std::uint64_t value) {
  host::put_current(key, value);
}
}
