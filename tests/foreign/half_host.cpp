// A host that exports only one of the two functions: the library must refuse to load.
#include "tests/foreign/system.h"

extern "C" __declspec(dllexport) uint64_t KY_ONLY_EXPORT(const char*) {
  return 0;
}

extern "C" void host_main() {
  constexpr uint32_t dll_init_failed = 1114;
  const bool refused = LoadLibraryW(first_argument()) == nullptr && GetLastError() == dll_init_failed;
  if (!refused) say("FAILED: the library loads without both exports, or fails otherwise\n");
  ExitProcess(refused ? 0 : 1);
}
