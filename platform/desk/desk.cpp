#include "platform/desk/desk.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "platform/desk/failure.h"

namespace desk {

namespace {

namespace fs = std::filesystem;

fs::path to_path(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

std::string to_text(const fs::path& path) {
  const std::u8string utf8 = path.u8string();
  return {utf8.begin(), utf8.end()};
}

/// The usual reasons in the same words on every system.
std::string reason_of(const std::error_code& error) {
  if (error == std::errc::no_such_file_or_directory) return "it does not exist";
  if (error == std::errc::permission_denied) return "access is denied";
  if (error == std::errc::not_a_directory) return "a part of the path is no folder";
  if (error == std::errc::file_exists) return "a file of that name exists";
  if (error == std::errc::no_space_on_device) return "the disk is full";
  return error.message();
}

/// The stream classes leave the reason in `errno` alone.
std::error_code stream_error() {
  return errno != 0 ? std::error_code(errno, std::generic_category()) : std::make_error_code(std::errc::io_error);
}

std::string write_in_place(const fs::path& path, const std::string& name, std::string_view bytes) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (file) file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file) file.close();
  return file ? std::string() : failure(name, "cannot be written", stream_error());
}

/// Writes and renames; the caller removes `temporary` after a failure.
std::string write_and_rename(const fs::path& temporary, const fs::path& path, const std::string& name,
                             std::string_view bytes, Access access) {
  std::error_code error;
  if (access == Access::owner_only) {
    // Narrowed while it is still empty.
    std::string empty = write_in_place(temporary, name, {});
    if (!empty.empty()) return empty;
    fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, error);
    if (error) return failure(name, "cannot be written", error);
  }
  std::string written = write_in_place(temporary, name, bytes);
  if (!written.empty()) return written;
  fs::rename(temporary, path, error);
  return error ? failure(name, "cannot be written", error) : std::string();
}

fs::path temporary_beside(const fs::path& path) {
  fs::path temporary = path;
  temporary += "." + std::to_string(std::random_device()()) + ".partial";
  return temporary;
}

}  // namespace

std::string failure(const std::string& path, std::string_view what, const std::error_code& error) {
  return path + ": " + std::string(what) + ": " + reason_of(error);
}

std::string read_file(const std::string& path, std::uintmax_t limit, std::string& bytes) {
  std::error_code error;
  const fs::path file_path = to_path(path);
  const fs::file_status status = fs::status(file_path, error);
  if (status.type() == fs::file_type::not_found) return path + ": cannot be read: it does not exist";
  if (fs::is_directory(status)) return path + ": cannot be read: it is a folder";
  errno = 0;
  std::ifstream file(file_path, std::ios::binary);
  if (!file) return failure(path, "cannot be read", stream_error());

  bytes.clear();
  char part[65536];
  while (file.read(part, sizeof part), file.gcount() > 0) {
    bytes.append(part, static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > limit) return path + ": is larger than " + std::to_string(limit) + " bytes";
  }
  return file.bad() ? failure(path, "cannot be read", stream_error()) : std::string();
}

std::string write_file(const std::string& path, std::string_view bytes, Access access) {
  std::error_code error;
  fs::path target = to_path(path);
  if (fs::is_symlink(fs::symlink_status(target, error))) {
    const fs::path resolved = fs::weakly_canonical(target, error);
    if (!error) target = resolved;
  }
  const fs::file_status status = fs::status(target, error);
  if (fs::is_directory(status)) return path + ": cannot be written: it is a folder";
  if (fs::exists(status) && !fs::is_regular_file(status)) return write_in_place(target, path, bytes);

  const fs::path temporary = temporary_beside(target);
  std::string failed = write_and_rename(temporary, target, path, bytes, access);
  if (!failed.empty()) fs::remove(temporary, error);
  return failed;
}

std::string make_folders(const std::string& path) {
  std::error_code error;
  const fs::path folder = to_path(path);
  fs::create_directories(folder, error);
  if (!error) return {};
  std::error_code ignored;
  return fs::is_directory(folder, ignored) ? std::string() : failure(path, "the folder cannot be made", error);
}

std::string remove(const std::string& path) {
  std::error_code error;
  fs::remove(to_path(path), error);
  return error ? failure(path, "cannot be removed", error) : std::string();
}

bool exists(const std::string& path) {
  std::error_code error;
  return fs::symlink_status(to_path(path), error).type() != fs::file_type::not_found;
}

bool are_same(const std::string& left, const std::string& right) {
  std::error_code error;
  return fs::equivalent(to_path(left), to_path(right), error) && !error;
}

std::string join(const std::string& folder, const std::string& name) {
  return to_text(to_path(folder) / to_path(name));
}

bool is_folder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(to_path(path), error);
}

Place place_of(const std::string& path) {
  const fs::path whole = to_path(path);
  return {to_text(whole.parent_path()), to_text(whole.filename())};
}

std::string list_files(const std::string& folder, std::vector<std::string>& names) {
  names.clear();
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? fs::path(".") : to_path(folder), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) names.push_back(to_text(entry->path().filename()));
  }
  std::sort(names.begin(), names.end());
  return error ? failure(folder, "cannot be listed", error) : std::string();
}

}  // namespace desk
