#include "platform/win32/crashes.h"

#include <windows.h>

#include <dbghelp.h>
#include <stdlib.h>

#include <atomic>
#include <exception>

#include "platform/win32/handles.h"

namespace win32 {

namespace {

// The handlers are the process's, and the system calls them without a word of its own for us.
constinit std::atomic<ports::CrashFilter*> the_filter{nullptr};

// An exception of C++ that nobody caught; the low bytes are "CPP".
constexpr DWORD uncaught_exception = 0xE0435050;

LONG WINAPI filter(EXCEPTION_POINTERS* exception) {
  ports::CrashFilter* const inner = the_filter.load();
  return inner == nullptr ? EXCEPTION_CONTINUE_SEARCH
                          : inner->on_crash(reinterpret_cast<ports::ExceptionPointers*>(exception));
}

[[noreturn]] void fault_on_terminate() {
  RaiseException(uncaught_exception, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  for (;;) TerminateProcess(GetCurrentProcess(), uncaught_exception);
}

// The write is the purpose: it passes control to the filter.
void write_to_nowhere(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {
  std::uint8_t* volatile address = nullptr;  // volatile, or the compiler would see what happens and choose another end
  volatile std::uint8_t* const nowhere = address;
  *nowhere = static_cast<std::uint8_t>(*nowhere + 1);
}

}  // namespace

bool Crashes::set_filter(ports::CrashFilter& inner) {
  the_filter = &inner;
  std::set_terminate(fault_on_terminate);
  return SetUnhandledExceptionFilter(filter) != nullptr;
}

bool Crashes::set_invalid_parameter_handler() {
  return _set_invalid_parameter_handler(write_to_nowhere) != nullptr;
}

bool Crashes::write_dump(ports::Handle file, ports::DumpKind kind, ports::ExceptionPointers* exception) {
  MINIDUMP_EXCEPTION_INFORMATION about{};
  about.ThreadId = GetCurrentThreadId();
  about.ExceptionPointers = reinterpret_cast<EXCEPTION_POINTERS*>(exception);
  about.ClientPointers = FALSE;
  return MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), native(file), static_cast<MINIDUMP_TYPE>(kind),
                           exception == nullptr ? nullptr : &about, nullptr, nullptr) != FALSE;
}

}  // namespace win32
