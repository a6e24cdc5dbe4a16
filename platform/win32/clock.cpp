#include "platform/win32/clock.h"

#include <time.h>
#include <windows.h>

namespace win32 {

std::uint32_t Clock::ticks() {
  return GetTickCount();
}

std::int64_t Clock::seconds_since_1970() {
  return _time64(nullptr);
}

ports::LocalTime Clock::local() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace win32
