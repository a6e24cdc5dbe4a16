#include "platform/machine/file_lookup.h"

#include <cstddef>
#include <utility>

#include "platform/machine/drives.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

namespace {

constexpr int most_links = 63;

[[nodiscard]] Found failure(ports::ErrorCode error) {
  return {error, 0, {}};
}

// Where a link leads, with the parts that came behind it.
[[nodiscard]] ParsedPath beyond(const FileTree& tree, NodeId folder, const FileNode& link, const Path& path,
                                std::size_t at) {
  std::wstring target = link.target;
  if (target.compare(0, 4, L"\\??\\") == 0) target[1] = L'\\';
  ParsedPath parsed = parse_path(target, path_of(tree, folder));
  if (parsed.error != code::success) return parsed;
  parsed.path.parts.insert(parsed.path.parts.end(), path.parts.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                           path.parts.end());
  parsed.path.folder_wanted = path.folder_wanted;
  return parsed;
}

[[nodiscard]] Found arrived(const FileNode& node, NodeId id, FilePlace place, bool folder_wanted) {
  if (node.going) return {code::access_denied, id, std::move(place)};
  if (folder_wanted && !node.folder) return {code::invalid_name, id, std::move(place)};
  return {code::success, id, std::move(place)};
}

[[nodiscard]] Found walk(const FileTree& tree, const Path& path, LastLink last, int links) {
  const auto volume = tree.volumes.find(path.drive);
  if (volume == tree.volumes.end()) return failure(code::path_not_found);
  NodeId folder = volume->second.root;
  if (path.parts.empty()) return {code::success, folder, {}};
  for (std::size_t i = 0;; ++i) {
    const bool at_end = i + 1 == path.parts.size();
    const NodeId id = child(tree, folder, path.parts[i]);
    if (id == 0) {
      return at_end ? Found{code::file_not_found, 0, {folder, path.parts[i]}} : failure(code::path_not_found);
    }
    const FileNode& node = tree.nodes.at(id);
    if (node.link != LinkKind::none && (!at_end || last == LastLink::followed)) {
      if (links == 0) return failure(code::cannot_resolve_filename);
      const ParsedPath target = beyond(tree, folder, node, path, i);
      if (target.error != code::success) return failure(target.error);
      return walk(tree, without_substitute(tree, target.path), last, links - 1);
    }
    if (at_end) {
      const auto entry = find_child(tree.nodes.at(folder), path.parts[i]);
      return arrived(node, id, {folder, entry->first}, path.folder_wanted);
    }
    if (!node.folder) return failure(code::path_not_found);
    folder = id;
  }
}

}  // namespace

Found look_up(const FileTree& tree, const Path& path, LastLink last) {
  return walk(tree, without_substitute(tree, path), last, most_links);
}

NodeId make_folders(FileTree& tree, const Path& where) {
  const Path path = without_substitute(tree, where);
  const auto volume = tree.volumes.find(path.drive);
  if (volume == tree.volumes.end()) return 0;
  NodeId folder = volume->second.root;
  for (const std::wstring& part : path.parts) {
    NodeId next = child(tree, folder, part);
    if (next == 0) {
      FileNode made;
      made.folder = true;
      next = add_node(tree, folder, part, std::move(made));
    }
    const FileNode& node = tree.nodes.at(next);
    if (!node.folder || node.link != LinkKind::none) return 0;
    folder = next;
  }
  return folder;
}

}  // namespace machine
