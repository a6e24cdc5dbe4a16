#include "platform/win32/errors.h"

#include <windows.h>

namespace win32 {

ports::ErrorCode Errors::last() {
  return GetLastError();
}

void Errors::set_last(ports::ErrorCode code) {
  SetLastError(code);
}

}  // namespace win32
