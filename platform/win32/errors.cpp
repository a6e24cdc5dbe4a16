#include "platform/win32/errors.h"

#include <windows.h>

#include "platform/win32/native_api.h"

namespace win32 {

ports::ErrorCode Errors::last() {
  return GetLastError();
}

void Errors::set_last(ports::ErrorCode code) {
  SetLastError(code);
}

ports::ErrorCode Errors::of_status(ports::Status status) {
  return RtlNtStatusToDosError(status);
}

}  // namespace win32
