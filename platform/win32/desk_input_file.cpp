#include <windows.h>

#include <algorithm>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/failure.h"
#include "platform/desk/input_file.h"

namespace desk {

namespace {

constexpr std::size_t longest_read = std::size_t{1} << 30;

HANDLE native(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

InputFile::~InputFile() {
  if (handle_ != -1) CloseHandle(native(handle_));
}

std::string InputFile::failed() const {
  return failure(path_, "cannot be read", std::error_code(static_cast<int>(GetLastError()), std::system_category()));
}

std::string InputFile::open(const std::string& path) {
  path_ = path;
  const std::wstring wide = base::strings::to_wide(path);
  const DWORD attributes = GetFileAttributesW(wide.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return path + ": cannot be read: it is a folder";
  }
  // Without the right to delete, whoever writes a log could not remove it while it is read.
  const HANDLE handle = CreateFileW(wide.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  if (handle == INVALID_HANDLE_VALUE) return failed();
  return GetFileType(handle) == FILE_TYPE_DISK ? std::string() : path + ": cannot be read: it is no plain file";
}

std::string InputFile::length(std::uint64_t& bytes) const {
  LARGE_INTEGER size{};
  if (GetFileSizeEx(native(handle_), &size) == 0) return failed();
  bytes = static_cast<std::uint64_t>(size.QuadPart);
  return {};
}

std::string InputFile::read(std::uint64_t offset, std::span<std::uint8_t> into, std::size_t& size) const {
  for (size = 0; size < into.size();) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset + size);
    place.OffsetHigh = static_cast<DWORD>((offset + size) >> 32);
    DWORD came = 0;
    const auto wanted = static_cast<DWORD>(std::min(into.size() - size, longest_read));
    if (ReadFile(native(handle_), into.data() + size, wanted, &came, &place) == 0) {
      if (GetLastError() == ERROR_HANDLE_EOF) break;
      return failed();
    }
    if (came == 0) break;
    size += came;
  }
  return {};
}

}  // namespace desk
