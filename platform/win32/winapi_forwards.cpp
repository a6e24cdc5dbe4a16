#include "platform/win32/winapi_forwards.h"

#include <windows.h>

namespace win32 {

void* WinapiForwards::Destroy(std::uint32_t) {
  return this;
}

void WinapiForwards::InitializeCriticalSection(void* section) {
  ::InitializeCriticalSection(static_cast<CRITICAL_SECTION*>(section));
}

void WinapiForwards::DeleteCriticalSection(void* section) {
  ::DeleteCriticalSection(static_cast<CRITICAL_SECTION*>(section));
}

void WinapiForwards::EnterCriticalSection(void* section) {
  ::EnterCriticalSection(static_cast<CRITICAL_SECTION*>(section));
}

void WinapiForwards::LeaveCriticalSection(void* section) {
  ::LeaveCriticalSection(static_cast<CRITICAL_SECTION*>(section));
}

void* WinapiForwards::CreateEventW(void* security, std::int32_t manual_reset, std::int32_t initial_state,
                                   const wchar_t* name) {
  return ::CreateEventW(static_cast<SECURITY_ATTRIBUTES*>(security), manual_reset, initial_state, name);
}

std::int32_t WinapiForwards::SetEvent(void* event) {
  return ::SetEvent(event);
}

std::int32_t WinapiForwards::CloseHandle(void* handle) {
  return ::CloseHandle(handle);
}

std::uint32_t WinapiForwards::GetTickCount() {
  return ::GetTickCount();
}

std::int32_t WinapiForwards::MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                                 std::int32_t source_length, wchar_t* destination,
                                                 std::int32_t destination_length) {
  return ::MultiByteToWideChar(code_page, flags, source, source_length, destination, destination_length);
}

}  // namespace win32
