#include "platform/win32/threads.h"

#include <windows.h>

#include "platform/win32/handles.h"

namespace win32 {

namespace {

DWORD WINAPI thread_main(void* parameter) {
  const std::unique_ptr<ports::ThreadBody> body(static_cast<ports::ThreadBody*>(parameter));
  body->run();
  return 0;
}

}  // namespace

ports::Handle Threads::start(std::unique_ptr<ports::ThreadBody> body, std::uint32_t& id) {
  DWORD thread_id = 0;
  const HANDLE thread = CreateThread(nullptr, 0, thread_main, body.get(), 0, &thread_id);
  if (thread == nullptr) return ports::Handle::null;
  static_cast<void>(body.release());  // The new thread owns it from here on.
  id = thread_id;
  return ported(thread);
}

std::uint32_t Threads::current_id() {
  return GetCurrentThreadId();
}

void Threads::sleep(std::uint32_t milliseconds) {
  Sleep(milliseconds);
}

ports::Handle Waits::create_event(bool manual_reset, bool initial_state, const wchar_t* name) {
  return ported(CreateEventW(nullptr, manual_reset, initial_state, name));
}

bool Waits::set(ports::Handle event) {
  return SetEvent(native(event)) != FALSE;
}

bool Waits::reset(ports::Handle event) {
  return ResetEvent(native(event)) != FALSE;
}

std::uint32_t Waits::wait(std::span<const ports::Handle> handles, bool all, std::uint32_t milliseconds) {
  static_assert(sizeof(ports::Handle) == sizeof(HANDLE));
  return WaitForMultipleObjects(static_cast<DWORD>(handles.size()), reinterpret_cast<const HANDLE*>(handles.data()),
                                all, milliseconds);
}

bool Waits::close(ports::Handle handle) {
  return CloseHandle(native(handle)) != FALSE;
}

}  // namespace win32
