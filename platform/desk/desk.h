#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace desk {

// The files of the desk that the workbench runs on: its input and output, not the world that commands work in. Paths
// are UTF-8 and follow the rules of the system at hand. An operation that can fail gives the empty string, or one line
// without a line end: the path, a colon and the reason.

/// Who may open a written file.
enum class Access : std::uint8_t { everybody, owner_only };

/// Reads a whole file; one of more than `limit` bytes is refused.
[[nodiscard]] std::string read_file(const std::string& path, std::uintmax_t limit, std::string& bytes);

/// Writes under a temporary name in the same folder and renames then, so that the file is there whole or not at all; a
/// file of that name is replaced. What is no plain file (a device, a pipe) is written in place.
[[nodiscard]] std::string write_file(const std::string& path, std::string_view bytes,
                                     Access access = Access::everybody);

/// Makes the folder and those above it; one that exists is success.
[[nodiscard]] std::string make_folders(const std::string& path);

/// Removes a file or an empty folder; one that does not exist is success.
[[nodiscard]] std::string remove(const std::string& path);

/// True for whatever has this name, of any kind; also where that cannot be found out.
[[nodiscard]] bool exists(const std::string& path);

/// True where both paths lead to one file or folder; false where that cannot be found out.
[[nodiscard]] bool are_same(const std::string& left, const std::string& right);

/// `folder` and `name`, joined as the system at hand does.
[[nodiscard]] std::string join(const std::string& folder, const std::string& name);

/// True for a folder, also behind a link.
[[nodiscard]] bool is_folder(const std::string& path);

/// A path's folder, which may be empty, and its name in it.
struct Place {
  std::string folder;
  std::string name;
};
[[nodiscard]] Place place_of(const std::string& path);

/// The names of the plain files in a folder, sorted. The empty folder is the current one.
[[nodiscard]] std::string list_files(const std::string& folder, std::vector<std::string>& names);

}  // namespace desk
