#include "platform/win32/termination.h"

#include <windows.h>

#include <stdlib.h>

#include <string>

namespace win32 {

namespace {

/// To a debugger and to the standard error stream, whichever there is.
void announce(const std::wstring& text) {
  const std::wstring line = L"Stopped: " + text + L"\n";
  OutputDebugStringW(line.c_str());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), bytes.data(), size, nullptr, nullptr);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace

void Termination::stop(const ports::StopReason& reason) {
  announce(reason.text);
  const std::uint32_t code = stop_code(reason.kind);
  // As the runtime does where a value does not fit; a handler may end the process in its own way.
  const _invalid_parameter_handler handler = _get_invalid_parameter_handler();
  if (reason.kind == ports::StopKind::invalid_parameter && handler != nullptr) {
    handler(reason.text.c_str(), nullptr, nullptr, 0, 0);
  }
  RaiseException(code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  // A debugger may swallow the exception; nothing may run on after it.
  for (;;) TerminateProcess(GetCurrentProcess(), code);
}

void Termination::step() {}

}  // namespace win32
