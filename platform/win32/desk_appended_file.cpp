#include <windows.h>

#include <utility>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/appended_file.h"
#include "platform/desk/desk.h"
#include "platform/desk/failure.h"

namespace desk {

namespace {

HANDLE native(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

AppendedFile::AppendedFile(std::string path) : path_(std::move(path)) {
  const HANDLE handle = CreateFileW(base::strings::to_wide(path_).c_str(), GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  if (handle == INVALID_HANDLE_VALUE) failed("cannot be written");
}

AppendedFile::~AppendedFile() {
  close();
}

void AppendedFile::append(std::span<const std::uint8_t> bytes) {
  DWORD written = 0;
  const auto size = static_cast<DWORD>(bytes.size());
  if (!WriteFile(native(handle_), bytes.data(), size, &written, nullptr) || written != size) {
    failed("cannot be written");
  }
}

void AppendedFile::cut(std::uint64_t size) {
  LARGE_INTEGER end;
  end.QuadPart = static_cast<LONGLONG>(size);
  if (!SetFilePointerEx(native(handle_), end, nullptr, FILE_BEGIN) || !SetEndOfFile(native(handle_))) {
    failed("cannot be cut");
  }
}

void AppendedFile::remove() {
  close();
  std::string failure = desk::remove(path_);
  if (failure_.empty()) failure_ = std::move(failure);
}

void AppendedFile::failed(const char* what) {
  const std::error_code error(static_cast<int>(GetLastError()), std::system_category());
  if (failure_.empty()) failure_ = desk::failure(path_, what, error);
}

void AppendedFile::close() {
  if (handle_ != -1) CloseHandle(native(std::exchange(handle_, -1)));
}

}  // namespace desk
