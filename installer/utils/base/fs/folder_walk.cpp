#include "installer/utils/base/fs/folder_walk.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/utils/base/fs/filesystem_error.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace base::fs {

namespace {

/// The attributes of what a link leads to; nothing where it leads nowhere.
[[nodiscard]] std::optional<std::uint32_t> attributes_behind(const std::wstring& link) {
  ports::Files& files = ports::system().files;
  const winapi::scoped_handle opened(files.open(link.c_str(), ports::file_access::read_attributes,
                                                ports::file_share::all, ports::Disposition::open_existing,
                                                ports::open_flag::backup_semantics));
  ports::FileInformation information;
  if (!opened.valid() || !files.information(opened.get(), information)) return std::nullopt;
  return information.attributes;
}

/// Only a link is opened: what is none may be looked at where it may not be opened.
[[nodiscard]] std::optional<std::uint32_t> followed(const std::wstring& path, std::uint32_t attributes) {
  if (attributes == ports::file_attribute::invalid) return std::nullopt;
  if ((attributes & ports::file_attribute::reparse_point) == 0) return attributes;
  return attributes_behind(path);
}

}  // namespace

std::wstring joined(std::wstring_view folder, std::wstring_view name) {
  std::wstring path(folder);
  const bool drive = path.size() == 2 && path[1] == L':';
  if (!path.empty() && path.back() != L'\\' && path.back() != L'/' && !drive) path += L'\\';
  return path.append(name);
}

bool is_folder(const std::wstring& path) {
  const auto attributes = followed(path, ports::system().files.attributes(path.c_str()));
  return attributes && (*attributes & ports::file_attribute::directory) != 0;
}

FolderWalk::Search::~Search() {
  if (valid()) (void)ports::system().files.find_close(handle_);
}

FolderWalk::FolderWalk(std::wstring folder)
    : folder_(std::move(folder)), search_(ports::system().files.find_first(joined(folder_, L"*").c_str(), row_)) {
  settle(search_.valid());
}

void FolderWalk::next() {
  settle(ports::system().files.find_next(search_.get(), row_));
}

bool FolderWalk::is_file() const {
  const auto attributes = followed(path(), row_.attributes);
  return attributes && (*attributes & ports::file_attribute::directory) == 0;
}

/// The folder itself and the one above it stand among the rows.
void FolderWalk::settle(bool got) {
  const ports::System& system = ports::system();
  while (got && (row_.name == L"." || row_.name == L"..")) got = system.files.find_next(search_.get(), row_);
  if (got) return;
  const ports::ErrorCode error = system.errors.last();
  if (error != ports::code::no_more_files) throw filesystem_error(error, "A folder cannot be read", folder_);
  at_end_ = true;
}

}  // namespace base::fs
