#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/status.h"
#include "platform/ports/types.h"

namespace ports {

/// Bits of a file's attributes.
namespace file_attribute {
inline constexpr std::uint32_t read_only = 0x1;
inline constexpr std::uint32_t hidden = 0x2;
inline constexpr std::uint32_t system = 0x4;
inline constexpr std::uint32_t directory = 0x10;
inline constexpr std::uint32_t archive = 0x20;
inline constexpr std::uint32_t normal = 0x80;
inline constexpr std::uint32_t temporary = 0x100;
inline constexpr std::uint32_t reparse_point = 0x400;
inline constexpr std::uint32_t invalid = 0xFFFFFFFF;
}  // namespace file_attribute

/// Rights asked for by `open`.
namespace file_access {
inline constexpr std::uint32_t list_directory = 0x1;
inline constexpr std::uint32_t read_attributes = 0x80;
inline constexpr std::uint32_t write_attributes = 0x100;
inline constexpr std::uint32_t erase = 0x10000;  // DELETE
inline constexpr std::uint32_t generic_write = 0x40000000;
inline constexpr std::uint32_t generic_read = 0x80000000;
}  // namespace file_access

/// What others may do with the file while it is open.
namespace file_share {
inline constexpr std::uint32_t none = 0;
inline constexpr std::uint32_t read = 1;
inline constexpr std::uint32_t write = 2;
inline constexpr std::uint32_t erase = 4;  // FILE_SHARE_DELETE
inline constexpr std::uint32_t all = 7;
}  // namespace file_share

/// Whether `open` makes the file, with the values of the system.
enum class Disposition : std::uint32_t {
  create_new = 1,
  create_always = 2,
  open_existing = 3,
  open_always = 4,
  truncate_existing = 5,
};

/// Flags of `open`.
namespace open_flag {
inline constexpr std::uint32_t backup_semantics = 0x02000000;    // needed to open a folder
inline constexpr std::uint32_t open_reparse_point = 0x00200000;  // the link itself, not what it points at
}  // namespace open_flag

/// Flags of `move`.
namespace move_flag {
inline constexpr std::uint32_t replace_existing = 1;
inline constexpr std::uint32_t copy_allowed = 2;
inline constexpr std::uint32_t delay_until_reboot = 4;
}  // namespace move_flag

/// What GetFileInformationByHandle tells.
struct FileInformation {
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;
  std::uint32_t links = 0;
  std::uint32_t volume = 0;  // its serial number
  std::uint64_t index = 0;   // the file's number on the volume
};

/// What tells one file from every other on this computer.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::array<std::uint8_t, 16> id{};
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// One row of a folder's listing.
struct FolderRow {
  std::wstring name;
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;
  /// From `list`: the number as in `FileInformation`, of a link its own. 0 where the volume does not tell.
  std::uint64_t index = 0;
};

/// Files and folders. Paths are NUL-terminated Windows paths of UTF-16 code units; "/" counts as "\". Every operation
/// may be called on any thread. Where one fails, `Errors::last` tells the code; common to all that take a path:
/// file_not_found (the last part is missing), path_not_found (a folder on the way is), invalid_name, access_denied.
class Files {
 public:
  virtual ~Files() = default;

  /// CreateFileW without security attributes or template. `invalid` on failure: also sharing_violation (another handle
  /// forbids it), file_exists (create_new), access_denied (a folder without backup_semantics, a read-only file opened
  /// for writing, a file that is going). With open_always or create_always on a file that was there, the call succeeds
  /// and the last error is already_exists. The handle is closed with `Waits::close`.
  [[nodiscard]] virtual Handle open(const wchar_t* path, std::uint32_t access, std::uint32_t share,
                                    Disposition disposition, std::uint32_t flags) = 0;

  /// ReadFile at the handle's position. At the end of the file it succeeds with `got` 0. Fails with invalid_handle,
  /// access_denied (not opened for reading), read_fault.
  virtual bool read(Handle file, std::span<std::uint8_t> into, std::uint32_t& got) = 0;

  /// WriteFile at the handle's position. Fails with invalid_handle, access_denied, disk_full.
  virtual bool write(Handle file, std::span<const std::uint8_t> bytes, std::uint32_t& written) = 0;

  /// FlushFileBuffers. Fails with invalid_handle, access_denied (not opened for writing), write_fault.
  virtual bool flush(Handle file) = 0;

  /// GetFileInformationByHandle. Of a link opened with open_reparse_point it tells about the link.
  virtual bool information(Handle file, FileInformation& out) = 0;

  /// GetFileInformationByHandleEx, FileIdInfo. Also fails with invalid_parameter or not_supported on a volume without
  /// identities.
  virtual bool identity(Handle file, FileIdentity& out) = 0;

  /// NtQueryInformationFile, FileCaseSensitiveInformation: bit 0 is set where the folder tells names apart by case.
  /// invalid_info_class or invalid_parameter where the system or the volume does not know of it; invalid_handle. Leaves
  /// the last error alone.
  [[nodiscard]] virtual Status case_sensitivity(Handle folder, std::uint32_t& flags) = 0;

  /// GetFileInformationByHandleEx, FileIdBothDirectoryInfo, or with `restart` FileIdBothDirectoryRestartInfo: the next
  /// rows of a folder that was opened with file_access::list_directory, as many as one call gives, in place of what
  /// `rows` held. "." and ".." are rows like any other. False at the end with no_more_files; also access_denied (not
  /// opened for listing), invalid_parameter (no folder).
  virtual bool list(Handle folder, bool restart, std::vector<FolderRow>& rows) = 0;

  /// SetFileInformationByHandle, FileDispositionInfo with the flag set: the file goes when its last handle is closed.
  /// Fails with access_denied (not opened for erase, or read-only), directory_not_empty.
  virtual bool mark_deleted(Handle file) = 0;

  /// SetFileInformationByHandle, FileBasicInfo with nothing but the attributes. Fails with access_denied (not opened
  /// for write_attributes).
  virtual bool set_attributes_of(Handle file, std::uint32_t attributes) = 0;

  /// SetFileInformationByHandle, FileRenameInfo: what is open gets another full path on its volume, in place of a file
  /// that is there. Fails with access_denied (not opened for erase; what is in the way may not go), path_not_found,
  /// not_same_device.
  virtual bool rename(Handle file, const wchar_t* to) = 0;

  /// GetFileAttributesW: the bits, or `file_attribute::invalid`. Of a link it tells about the link.
  [[nodiscard]] virtual std::uint32_t attributes(const wchar_t* path) = 0;

  /// SetFileAttributesW.
  virtual bool set_attributes(const wchar_t* path, std::uint32_t attributes) = 0;

  /// PathFileExistsW: true for a file and for a folder. False leaves the reason in the last error.
  [[nodiscard]] virtual bool exists(const wchar_t* path) = 0;

  /// DeleteFileW. A link goes itself. Also fails with access_denied (read-only, a folder, an image that runs) and
  /// sharing_violation (open without file_share::erase).
  virtual bool remove(const wchar_t* path) = 0;

  /// RemoveDirectoryW. A junction goes itself. Also fails with directory_not_empty, directory_name_invalid (a file),
  /// sharing_violation.
  virtual bool remove_folder(const wchar_t* path) = 0;

  /// CreateDirectoryW. Also fails with already_exists.
  virtual bool create_folder(const wchar_t* path) = 0;

  /// CreateSymbolicLinkW; `to_folder` says what kind of thing `target` is. Also fails with already_exists,
  /// privilege_not_held.
  virtual bool create_link(const wchar_t* link, const wchar_t* target, bool to_folder) = 0;

  /// MoveFileExW. A null `to` with delay_until_reboot books a deletion at the next start, also of what is not there.
  /// Also fails with already_exists (without replace_existing), sharing_violation, access_denied (a folder is in the
  /// way), invalid_parameter (a null `to` without delay_until_reboot).
  virtual bool move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) = 0;

  /// GetTempPathW: the folder for temporary files, with its closing backslash, into `into`. Gives the length without
  /// the terminator; a length beyond `into` is the size that is needed, terminator included; 0 is failure.
  [[nodiscard]] virtual std::uint32_t temp_folder(std::span<wchar_t> into) = 0;

  /// GetTempFileNameW: makes a name from `folder`, up to three characters of `prefix` and `unique`, into 260 characters
  /// at `into`. With `unique` 0 it finds a free number and creates the empty file. Gives the number; 0 is failure:
  /// directory_name_invalid (no such folder), access_denied.
  [[nodiscard]] virtual std::uint32_t temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                                                std::span<wchar_t, 260> into) = 0;

  /// FindFirstFileW with a pattern in the last part: the search and its first row. `invalid` on failure, with
  /// file_not_found where nothing matches. "." and ".." are rows like any other.
  [[nodiscard]] virtual Handle find_first(const wchar_t* pattern, FolderRow& row) = 0;

  /// FindNextFileW. False at the end, with no_more_files.
  virtual bool find_next(Handle search, FolderRow& row) = 0;

  /// FindClose.
  virtual bool find_close(Handle search) = 0;
};

}  // namespace ports
