#include "host/deletion/folder_removal.h"

#include <algorithm>
#include <array>

#include "host/deletion/folder_target.h"
#include "installer/desktop/commands/base/trace.h"
#include "platform/ports/codes.h"
#include "platform/ports/environment.h"

namespace host {

namespace {

namespace access = ports::file_access;
namespace attribute = ports::file_attribute;
using ports::ErrorCode;

/// Listing is asked for although reading attributes would do: only with it does the system heed what is shared, and the
/// folder then cannot be renamed or replaced while it is held.
constexpr std::uint32_t holding = access::list_directory | access::read_attributes;
constexpr std::uint32_t deleting = holding | access::write_attributes | access::erase;

bool is_absent(ErrorCode code) {
  return code == ports::code::file_not_found || code == ports::code::path_not_found;
}
bool is_link(std::uint32_t attributes) {
  return (attributes & attribute::reparse_point) != 0;
}
bool is_dots(const std::wstring& name) {
  return name == L"." || name == L"..";
}
bool is_folder(std::uint32_t attributes) {
  return (attributes & attribute::directory) != 0;
}

}  // namespace

bool find_protected_folders(const ports::System& system, std::vector<std::wstring>& out) {
  for (const ports::KnownFolder which : {ports::KnownFolder::windows, ports::KnownFolder::system,
                                         ports::KnownFolder::program_files, ports::KnownFolder::common_app_data}) {
    std::wstring folder = system.environment.folder(which);
    if (folder.empty()) return false;
    if (which == ports::KnownFolder::program_files) out.push_back(folder + L" (x86)");
    if (which == ports::KnownFolder::windows) {
      out.push_back(folder + L"\\SysWOW64");
      out.push_back(folder.substr(0, 2) + L"\\Users");
    }
    out.push_back(std::move(folder));
  }
  return true;
}

ErrorCode FolderRemoval::remove(std::span<const std::wstring> steps) {
  std::vector<OpenHandle> held;
  held.reserve(steps.size());
  for (const std::wstring& step : steps.first(steps.size() - 1)) {
    const ErrorCode failure = hold(step, held);
    if (is_absent(failure)) return ports::code::success;
    if (failure != ports::code::success) {
      ky::Trace(L"[DeleteFolder] '%s' cannot be passed, so nothing below it is deleted. Error %u\n", shown(step),
                failure);
      return failure;
    }
  }
  return remove_top(steps.back(), held.back().get());
}

ErrorCode FolderRemoval::hold(const std::wstring& folder, std::vector<OpenHandle>& held) {
  OpenHandle file = open(folder, holding);
  if (!file.good()) return system_.errors.last();
  ports::FileInformation found;
  const ErrorCode failure = inspect(file, held.empty() ? ports::Handle::null : held.back().get(), 0, found);
  if (failure != ports::code::success) return failure;
  if (is_link(found.attributes)) return ports::code::stopped_on_symlink;
  // A file where a folder was expected: what lies below it is not there.
  if (!is_folder(found.attributes)) return ports::code::path_not_found;
  held.push_back(std::move(file));
  return ports::code::success;
}

ErrorCode FolderRemoval::remove_top(const std::wstring& path, ports::Handle parent) {
  OpenHandle top = open(path, deleting);
  if (!top.good()) {
    cannot_open(path, true, 0, parent);
    return first_failure_;
  }
  ports::FileInformation found;
  const ErrorCode failure = inspect(top, parent, 0, found);
  if (failure != ports::code::success) return failure;
  if (!is_folder(found.attributes)) return ports::code::directory_name_invalid;
  if (!is_link(found.attributes)) {
    if (is_protected(top)) return ports::code::invalid_parameter;
    if (options_.recursive) remove_children(path, top.get());
  }
  remove_open(std::move(top), path, found, parent);
  return first_failure_;
}

void FolderRemoval::cannot_open(const std::wstring& path, bool folder, std::uint64_t index, ports::Handle parent) {
  const ErrorCode code = system_.errors.last();
  if (is_absent(code)) return;
  if (folder && options_.recursive) {
    const OpenHandle in_use = open(path, holding);
    ports::FileInformation found;
    const bool straight = in_use.good() && inspect(in_use, parent, index, found) == ports::code::success;
    if (straight && is_folder(found.attributes) && !is_link(found.attributes) && !is_protected(in_use)) {
      remove_children(path, in_use.get());
    }
  }
  stays(path, folder, code, parent);
}

void FolderRemoval::remove_children(const std::wstring& folder, ports::Handle handle) {
  // The whole list first: rows that go would shift those that are still to come.
  std::vector<ports::FolderRow> all;
  if (const ErrorCode code = rows_of(handle, all); code != ports::code::success) note_failure(folder, code);
  for (const ports::FolderRow& child : all) {
    if (!is_dots(child.name)) remove_child(folder + L'\\' + child.name, child, handle);
  }
}

ErrorCode FolderRemoval::rows_of(ports::Handle folder, std::vector<ports::FolderRow>& all) {
  std::vector<ports::FolderRow> rows;
  bool listed = system_.files.list(folder, true, rows);
  while (listed) {
    all.insert(all.end(), rows.begin(), rows.end());
    listed = system_.files.list(folder, false, rows);
  }
  const ErrorCode code = system_.errors.last();
  return code == ports::code::no_more_files ? ports::code::success : code;
}

void FolderRemoval::remove_child(const std::wstring& path, const ports::FolderRow& listed, ports::Handle parent) {
  OpenHandle child = open(path, deleting);
  if (!child.good()) {
    return cannot_open(path, is_folder(listed.attributes) && !is_link(listed.attributes), listed.index, parent);
  }
  ports::FileInformation found;
  const ErrorCode failure = inspect(child, parent, listed.index, found);
  if (failure != ports::code::success) return note_failure(path, failure);
  if (is_folder(found.attributes) && !is_link(found.attributes)) remove_children(path, child.get());
  remove_open(std::move(child), path, found, parent);
}

void FolderRemoval::remove_open(OpenHandle file, const std::wstring& path, const ports::FileInformation& information,
                                ports::Handle parent) {
  ErrorCode code = ports::code::success;
  {
    const OpenHandle open = std::move(file);
    const bool read_only = (information.attributes & attribute::read_only) != 0;
    if (read_only) {
      (void)system_.files.set_attributes_of(open.get(), attribute::normal);  // the deletion tells whether it worked
    }
    if (!system_.files.mark_deleted(open.get())) code = system_.errors.last();
    // The attributes are the file's, which lives on by its other names.
    if (read_only && information.links > 1) (void)system_.files.set_attributes_of(open.get(), information.attributes);
  }
  if (code != ports::code::success) stays(path, is_folder(information.attributes), code, parent);
}

void FolderRemoval::stays(const std::wstring& path, bool folder, ErrorCode code, ports::Handle parent) {
  // A full folder that is not to be emptied is not booked either: the system would pass it over.
  const bool left_full = code == ports::code::directory_not_empty && !options_.recursive;
  if (!left_full && put_aside(path, folder, parent)) return;
  note_failure(path, code);
}

void FolderRemoval::note_failure(const std::wstring& path, ErrorCode code) {
  ky::Trace(L"[DeleteFolder] '%s' stays. Error %u\n", shown(path), code);
  if (first_failure_ == ports::code::success) first_failure_ = code;
}

bool FolderRemoval::put_aside(const std::wstring& path, bool folder, ports::Handle parent) {
  std::wstring place = path;
  const bool moved = options_.move_to_temp && !folder && move_to_temporary(path, parent, place);
  if (moved) ky::Trace(L"[DeleteFolder] '%s' is moved to '%s'\n", shown(path), shown(place));
  if (!options_.delete_after_reboot) return moved;
  if (!system_.files.move(place.c_str(), nullptr, ports::move_flag::delay_until_reboot)) return moved;
  ky::Trace(L"[DeleteFolder] '%s' goes at the next start\n", shown(place));
  return true;
}

bool FolderRemoval::move_to_temporary(const std::wstring& path, ports::Handle parent, std::wstring& moved) {
  // Whoever asks for less and shares more may get what could not be opened to be deleted.
  const OpenHandle file = open(path, access::read_attributes | access::erase, ports::file_share::all);
  ports::FileInformation found;
  if (!file.good() || inspect(file, parent, 0, found) != ports::code::success) return false;
  std::array<wchar_t, 261> folder{};
  const std::uint32_t length = system_.files.temp_folder(folder);
  if (length == 0 || length >= folder.size()) return false;
  std::array<wchar_t, 260> name{};
  if (system_.files.temp_file(folder.data(), L"ky_", 0, name) == 0) return false;
  if (!system_.files.rename(file.get(), name.data())) {
    (void)system_.files.remove(name.data());  // the empty file that held the name
    return false;
  }
  moved = name.data();
  return true;
}

OpenHandle FolderRemoval::open(const std::wstring& path, std::uint32_t wanted, std::uint32_t share) {
  return {system_.waits, system_.files.open(path.c_str(), wanted, share, ports::Disposition::open_existing,
                                            ports::open_flag::backup_semantics | ports::open_flag::open_reparse_point)};
}

ErrorCode FolderRemoval::inspect(const OpenHandle& file, ports::Handle parent, std::uint64_t index,
                                 ports::FileInformation& out) {
  if (!system_.files.information(file.get(), out)) return system_.errors.last();
  if (parent == ports::Handle::null) return ports::code::success;
  // An empty folder can be made a link while it is open, and a folder again at once, so that its looks do not tell
  // whether the way here was straight. What it lists does: the list is its own, also while it is a link.
  ports::FileInformation above;
  if (!system_.files.information(parent, above)) return system_.errors.last();
  if (is_link(above.attributes) || above.volume != out.volume) return ports::code::stopped_on_symlink;
  return out.index == index || lists(parent, out.index) ? ports::code::success : ports::code::stopped_on_symlink;
}

bool FolderRemoval::lists(ports::Handle folder, std::uint64_t index) {
  std::vector<ports::FolderRow> rows;
  if (rows_of(folder, rows) != ports::code::success) return false;
  return std::any_of(rows.begin(), rows.end(), [index](const ports::FolderRow& row) {
    // Without numbers on the volume the looks have to do.
    return !is_dots(row.name) && (row.index == index || row.index == 0);
  });
}

bool FolderRemoval::is_protected(const OpenHandle& folder) {
  ports::FileIdentity own;
  if (!system_.files.identity(folder.get(), own)) return false;  // a volume without identities: the path has to do
  for (const std::wstring& path : protected_) {
    const OpenHandle other(system_.waits,
                           system_.files.open(path.c_str(), access::read_attributes, ports::file_share::all,
                                              ports::Disposition::open_existing, ports::open_flag::backup_semantics));
    ports::FileIdentity identity;
    if (other.good() && system_.files.identity(other.get(), identity) && identity == own) return true;
  }
  return false;
}

}  // namespace host
