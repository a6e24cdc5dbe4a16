#include "platform/win32/environment.h"

#include <windows.h>

#include <shlobj.h>
#include <userenv.h>

#include <iterator>

namespace win32 {

namespace {

using FolderCall = UINT(WINAPI*)(wchar_t*, UINT);

std::wstring from_call(FolderCall call) {
  wchar_t path[MAX_PATH];
  const UINT length = call(path, MAX_PATH);
  return length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

std::wstring all_users_profile() {
  wchar_t path[520];
  DWORD size = static_cast<DWORD>(std::size(path));
  return GetAllUsersProfileDirectoryW(path, &size) ? std::wstring(path) : std::wstring();
}

std::wstring special(int folder) {
  wchar_t path[MAX_PATH];
  return SHGetSpecialFolderPathW(nullptr, path, folder, FALSE) ? std::wstring(path) : std::wstring();
}

}  // namespace

std::wstring Environment::folder(ports::KnownFolder which) {
  switch (which) {
    case ports::KnownFolder::system:
      return from_call(GetSystemDirectoryW);
    case ports::KnownFolder::windows:
      return from_call(GetWindowsDirectoryW);
    case ports::KnownFolder::program_files:
      return special(CSIDL_PROGRAM_FILES);
    case ports::KnownFolder::common_app_data:
      return special(CSIDL_COMMON_APPDATA);
    case ports::KnownFolder::all_users_profile:
      return all_users_profile();
  }
  return {};
}

std::wstring Environment::command_line() {
  return GetCommandLineW();
}

std::uint32_t Environment::dos_device(const wchar_t* name, std::span<wchar_t> into) {
  return QueryDosDeviceW(name, into.data(), static_cast<DWORD>(into.size()));
}

}  // namespace win32
