#include "platform/win32/library_search.h"

#include <windows.h>

namespace win32 {

bool restrict_library_search() {
  return SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32) != FALSE &&
         SetDllDirectoryW(L"") != FALSE;
}

}  // namespace win32
