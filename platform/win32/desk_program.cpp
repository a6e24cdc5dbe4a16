#include "platform/desk/program.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "installer/utils/base/strings/utf8.h"

namespace desk {

namespace {

constexpr UINT ended_here = 1;

struct CloseNative {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using NativeHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseNative>;

std::wstring environment_variable(const wchar_t* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

/// The program's file in the first folder of PATH that holds it. The system's own search would begin in the current
/// folder, where whoever sends a script may have put a program beside it.
std::wstring find_program(const std::string& program) {
  const std::wstring file = base::strings::to_wide(program) + L".exe";
  const std::wstring path = environment_variable(L"PATH");
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find(L';', begin), path.size());
    std::wstring folder = path.substr(begin, end - begin);
    begin = end + 1;
    std::erase(folder, L'"');
    // What is relative leads to the current folder as well.
    const bool absolute =
        folder.size() >= 3 && ((folder[1] == L':' && folder[2] == L'\\') || folder.starts_with(L"\\\\"));
    if (!absolute) continue;
    if (!folder.ends_with(L'\\')) folder += L'\\';
    const DWORD kind = GetFileAttributesW((folder + file).c_str());
    if (kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) == 0) return folder + file;
  }
  return {};
}

/// `argument` so that the program's runtime makes the same of it: in quotes where it has to be, and backslashes count
/// double before a quote.
std::wstring quoted(const std::wstring& argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos) return argument;
  std::wstring out = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') out.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    out += c;
  }
  return out.append(backslashes, L'\\') + L'"';
}

/// A temporary file that goes with its last handle, and that a process started from here inherits. Unlike a pipe it
/// takes everything at once, whoever reads when.
NativeHandle make_stream() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t name[MAX_PATH + 1];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"ky", 0, name) == 0) return {};
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const HANDLE handle = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, &inherited,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  return NativeHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

bool rewind(HANDLE stream) {
  return SetFilePointerEx(stream, LARGE_INTEGER{}, nullptr, FILE_BEGIN) != FALSE;
}

bool fill(HANDLE stream, std::string_view bytes) {
  DWORD written = 0;
  return WriteFile(stream, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size() && rewind(stream);
}

std::string content_of(HANDLE stream) {
  std::string content;
  char part[65536];
  if (!rewind(stream)) return content;
  for (DWORD n = 0; ReadFile(stream, part, sizeof part, &n, nullptr) && n > 0;) content.append(part, n);
  return content;
}

NativeHandle start(const std::wstring& file, const std::vector<std::string>& arguments, HANDLE in, HANDLE out,
                   HANDLE err) {
  std::wstring command_line = quoted(file);
  for (const std::string& argument : arguments) command_line += L' ' + quoted(base::strings::to_wide(argument));
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in;
  startup.hStdOutput = out;
  startup.hStdError = err;
  PROCESS_INFORMATION created{};
  if (!CreateProcessW(file.c_str(), command_line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                      &startup, &created)) {
    return {};
  }
  CloseHandle(created.hThread);
  return NativeHandle(created.hProcess);
}

std::string error_text() {
  return "error " + std::to_string(GetLastError());
}

}  // namespace

ProgramRun run_program(const std::string& program, const std::vector<std::string>& arguments, std::string_view input,
                       std::chrono::milliseconds limit) {
  ProgramRun run;
  const std::wstring file = find_program(program);
  if (file.empty()) {
    run.found = false;
    run.failure = program + ": cannot be started: it is not on the PATH";
    return run;
  }
  const NativeHandle in = make_stream();
  const NativeHandle out = make_stream();
  const NativeHandle err = make_stream();
  if (!in || !out || !err || !fill(in.get(), input)) {
    run.failure = program + ": no temporary file for it: " + error_text();
    return run;
  }
  const NativeHandle process = start(file, arguments, in.get(), out.get(), err.get());
  if (!process) {
    run.failure = program + ": cannot be started: " + error_text();
    return run;
  }
  DWORD code = 0;
  if (WaitForSingleObject(process.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
    TerminateProcess(process.get(), ended_here);
    WaitForSingleObject(process.get(), INFINITE);
    run.failure = program + ": did not end in time";
  } else if (!GetExitCodeProcess(process.get(), &code)) {
    run.failure = program + ": its exit code is not known: " + error_text();
  }
  run.exit_code = static_cast<int>(code);
  run.output = content_of(out.get());
  run.errors = content_of(err.get());
  return run;
}

}  // namespace desk
