#include "platform/win32/files.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <vector>

#include "platform/win32/handles.h"
#include "platform/win32/native_api.h"

namespace win32 {

namespace {

std::uint64_t joined(DWORD high, DWORD low) {
  return (static_cast<std::uint64_t>(high) << 32) | low;
}

ports::FolderRow row_of(const WIN32_FIND_DATAW& found) {
  return {found.cFileName, found.dwFileAttributes, joined(found.nFileSizeHigh, found.nFileSizeLow)};
}

/// All bits are set where the number does not fit.
std::uint64_t told_index(const LARGE_INTEGER& id) {
  return id.QuadPart == -1 ? 0 : static_cast<std::uint64_t>(id.QuadPart);
}

/// The rows that one call put into `block`.
void take_rows(const std::uint8_t* block, std::vector<ports::FolderRow>& rows) {
  for (;;) {
    const auto& found = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(block);
    rows.push_back({std::wstring(found.FileName, found.FileNameLength / sizeof(wchar_t)), found.FileAttributes,
                    static_cast<std::uint64_t>(found.EndOfFile.QuadPart), told_index(found.FileId)});
    if (found.NextEntryOffset == 0) return;
    block += found.NextEntryOffset;
  }
}

}  // namespace

ports::Handle Files::open(const wchar_t* path, std::uint32_t access, std::uint32_t share,
                          ports::Disposition disposition, std::uint32_t flags) {
  return ported(CreateFileW(path, access, share, nullptr, static_cast<DWORD>(disposition), flags, nullptr));
}

bool Files::read(ports::Handle file, std::span<std::uint8_t> into, std::uint32_t& got) {
  DWORD count = 0;
  const BOOL done = ReadFile(native(file), into.data(), static_cast<DWORD>(into.size()), &count, nullptr);
  got = count;
  return done != FALSE;
}

bool Files::write(ports::Handle file, std::span<const std::uint8_t> bytes, std::uint32_t& written) {
  DWORD count = 0;
  const BOOL done = WriteFile(native(file), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
  written = count;
  return done != FALSE;
}

bool Files::flush(ports::Handle file) {
  return FlushFileBuffers(native(file)) != FALSE;
}

bool Files::information(ports::Handle file, ports::FileInformation& out) {
  BY_HANDLE_FILE_INFORMATION found{};
  if (!GetFileInformationByHandle(native(file), &found)) return false;
  out = {found.dwFileAttributes, joined(found.nFileSizeHigh, found.nFileSizeLow), found.nNumberOfLinks,
         found.dwVolumeSerialNumber, joined(found.nFileIndexHigh, found.nFileIndexLow)};
  return true;
}

bool Files::identity(ports::Handle file, ports::FileIdentity& out) {
  FILE_ID_INFO found{};
  if (!GetFileInformationByHandleEx(native(file), FileIdInfo, &found, sizeof found)) return false;
  out.volume = found.VolumeSerialNumber;
  std::copy(std::begin(found.FileId.Identifier), std::end(found.FileId.Identifier), out.id.begin());
  return true;
}

ports::Status Files::case_sensitivity(ports::Handle folder, std::uint32_t& flags) {
  ULONG found = 0;
  IoStatusBlock result{};
  const LONG status =
      NtQueryInformationFile(native(folder), &result, &found, sizeof found, file_case_sensitive_information);
  flags = found;
  return status;
}

bool Files::mark_deleted(ports::Handle file) {
  FILE_DISPOSITION_INFO disposition{TRUE};
  return SetFileInformationByHandle(native(file), FileDispositionInfo, &disposition, sizeof disposition) != FALSE;
}

bool Files::set_attributes_of(ports::Handle file, std::uint32_t attributes) {
  FILE_BASIC_INFO basic{};  // Times of 0 are left as they are.
  basic.FileAttributes = attributes;
  return SetFileInformationByHandle(native(file), FileBasicInfo, &basic, sizeof basic) != FALSE;
}

std::uint32_t Files::attributes(const wchar_t* path) {
  return GetFileAttributesW(path);
}

bool Files::set_attributes(const wchar_t* path, std::uint32_t attributes) {
  return SetFileAttributesW(path, attributes) != FALSE;
}

bool Files::exists(const wchar_t* path) {
  return PathFileExistsW(path) != FALSE;
}

bool Files::remove(const wchar_t* path) {
  return DeleteFileW(path) != FALSE;
}

bool Files::remove_folder(const wchar_t* path) {
  return RemoveDirectoryW(path) != FALSE;
}

bool Files::create_folder(const wchar_t* path) {
  return CreateDirectoryW(path, nullptr) != FALSE;
}

bool Files::create_link(const wchar_t* link, const wchar_t* target, bool to_folder) {
  return CreateSymbolicLinkW(link, target, to_folder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0) != FALSE;
}

bool Files::rename(ports::Handle file, const wchar_t* to) {
  const std::wstring_view path = to;
  const std::size_t size = path.size() * sizeof(wchar_t);
  // The structure has room for the terminator.
  std::vector<std::uint64_t> block((sizeof(FILE_RENAME_INFO) + size) / sizeof(std::uint64_t) + 1);
  auto& information = *reinterpret_cast<FILE_RENAME_INFO*>(block.data());
  information.ReplaceIfExists = TRUE;
  information.FileNameLength = static_cast<DWORD>(size);
  std::copy(path.begin(), path.end(), information.FileName);
  return SetFileInformationByHandle(native(file), FileRenameInfo, &information,
                                    static_cast<DWORD>(sizeof(FILE_RENAME_INFO) + size)) != FALSE;
}

bool Files::move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) {
  return MoveFileExW(from, to, flags) != FALSE;
}

std::uint32_t Files::temp_folder(std::span<wchar_t> into) {
  return GetTempPathW(static_cast<DWORD>(into.size()), into.data());
}

std::uint32_t Files::temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                               std::span<wchar_t, 260> into) {
  return GetTempFileNameW(folder, prefix, unique, into.data());
}

ports::Handle Files::find_first(const wchar_t* pattern, ports::FolderRow& row) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(pattern, &found);
  if (search != INVALID_HANDLE_VALUE) row = row_of(found);
  return ported(search);
}

bool Files::list(ports::Handle folder, bool restart, std::vector<ports::FolderRow>& rows) {
  alignas(FILE_ID_BOTH_DIR_INFO) std::array<std::uint8_t, 32768> block;
  rows.clear();
  if (!GetFileInformationByHandleEx(native(folder), restart ? FileIdBothDirectoryRestartInfo : FileIdBothDirectoryInfo,
                                    block.data(), static_cast<DWORD>(block.size()))) {
    return false;
  }
  take_rows(block.data(), rows);
  return true;
}

bool Files::find_next(ports::Handle search, ports::FolderRow& row) {
  WIN32_FIND_DATAW found{};
  if (!FindNextFileW(native(search), &found)) return false;
  row = row_of(found);
  return true;
}

bool Files::find_close(ports::Handle search) {
  return FindClose(native(search)) != FALSE;
}

}  // namespace win32
