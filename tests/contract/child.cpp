// The program that contract tests start.
//   MILLISECONDS CODE [...]           lives for so long and ends with the code
//   MILLISECONDS CODE nameless        and takes its command line out of its parameters
//   ... -- LINE                       starts LINE, waits for its end and ends with its code
//   await EVENT MILLISECONDS          waits for an event and ends so long after it, or never with -1, with 5
//   set EVENT                         sets the event and ends
#include <windows.h>

#include <winternl.h>

#include <cstdlib>
#include <cwchar>
#include <string>

// Not in the headers.
extern "C" PPEB NTAPI RtlGetCurrentPeb();

namespace {

constexpr int closed = 5;

DWORD start(wchar_t* line) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(nullptr, line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made)) return 1;
  DWORD code = 1;
  WaitForSingleObject(made.hProcess, INFINITE);
  GetExitCodeProcess(made.hProcess, &code);
  return code;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  std::wstring line = GetCommandLineW();
  if (const auto rest = line.find(L" -- "); rest != line.npos) return static_cast<int>(start(&line[rest + 4]));
  if (argc < 3) return 2;
  const std::wstring first = argv[1];
  if (first == L"set") return SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, argv[2])) ? 0 : 3;
  if (first == L"await") {
    WaitForSingleObject(OpenEventW(SYNCHRONIZE, FALSE, argv[2]), INFINITE);
    Sleep(static_cast<DWORD>(_wtoi(argv[3])));
    return closed;
  }
  if (argc > 3 && std::wcscmp(argv[3], L"nameless") == 0) {
    RtlGetCurrentPeb()->ProcessParameters->CommandLine.Length = 0;
  }
  Sleep(static_cast<DWORD>(_wtoi(argv[1])));
  return _wtoi(argv[2]);
}
