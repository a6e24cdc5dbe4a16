#include "platform/machine/file_tree.h"

#include <algorithm>
#include <utility>

#include "platform/ports/files.h"

namespace machine {

namespace attribute = ports::file_attribute;

Volume& add_volume(FileTree& tree, std::wstring_view drive, std::uint32_t serial) {
  Volume& volume = tree.volumes[std::wstring(drive)];
  volume.root = ++tree.last_node;
  volume.serial = serial;
  FileNode root;
  root.folder = true;
  root.root = volume.root;
  root.attributes = attribute::hidden | attribute::system;
  tree.nodes.emplace(volume.root, std::move(root));
  return volume;
}

namespace {

template <class Volumes>
[[nodiscard]] auto volume_at(Volumes& volumes, NodeId root) {
  return std::find_if(volumes.begin(), volumes.end(), [root](const auto& entry) { return entry.second.root == root; });
}

}  // namespace

const Volume& volume_of(const FileTree& tree, NodeId node) {
  return volume_at(tree.volumes, tree.nodes.at(node).root)->second;
}

Volume& volume_of(FileTree& tree, NodeId node) {
  return volume_at(tree.volumes, tree.nodes.at(node).root)->second;
}

bool resize(FileTree& tree, NodeId id, std::uint64_t size) {
  FileNode& node = tree.nodes.at(id);
  Volume& volume = volume_of(tree, id);
  if (volume.free) {
    if (size > node.size + *volume.free) return false;
    volume.free = *volume.free + node.size - size;
  }
  node.size = size;
  if (size == 0) node.signature.reset();
  if (node.bytes.size() > size) node.bytes.resize(static_cast<std::size_t>(size));
  return true;
}

void spoil_signature(FileNode& node) {
  if (node.signature) node.signature->trust = ports::trust::bad_digest;
}

void set_case_sensitive(FileNode& folder, bool on) {
  Children children(ChildOrder{on});
  children.insert(folder.children.begin(), folder.children.end());
  folder.children = std::move(children);
}

Children::const_iterator find_child(const FileNode& folder, std::wstring_view name) {
  const auto found = folder.children.find(name);
  if (found != folder.children.end()) return found;
  const auto in_full = folder.short_names.find(name);
  return in_full == folder.short_names.end() ? folder.children.end() : folder.children.find(in_full->second);
}

NodeId child(const FileTree& tree, NodeId folder, std::wstring_view name) {
  const FileNode& node = tree.nodes.at(folder);
  const auto found = find_child(node, name);
  return found == node.children.end() ? 0 : found->second;
}

NodeId add_node(FileTree& tree, NodeId folder, std::wstring_view name, FileNode node) {
  const NodeId id = ++tree.last_node;
  tree.nodes.emplace(id, std::move(node));
  add_name(tree, id, {folder, std::wstring(name)});
  return id;
}

void add_name(FileTree& tree, NodeId node, const FilePlace& place) {
  FileNode& folder = tree.nodes.at(place.folder);
  FileNode& named = tree.nodes.at(node);
  folder.children.emplace(place.name, node);
  named.places.push_back(place);
  named.root = folder.root;
}

namespace {

// Takes the name out of its folder, and gives the place in the node that stood there.
[[nodiscard]] std::vector<FilePlace>::iterator cut_name(FileTree& tree, const FilePlace& place) {
  FileNode& folder = tree.nodes.at(place.folder);
  const auto entry = find_child(folder, place.name);
  std::vector<FilePlace>& places = tree.nodes.at(entry->second).places;
  const FilePlace known{place.folder, entry->first};
  std::erase_if(folder.short_names, [&known](const auto& one) { return one.second == known.name; });
  folder.children.erase(entry);
  return std::find(places.begin(), places.end(), known);
}

}  // namespace

void remove_name(FileTree& tree, const FilePlace& place) {
  const NodeId id = child(tree, place.folder, place.name);
  if (id == 0) return;
  FileNode& node = tree.nodes.at(id);
  node.places.erase(cut_name(tree, place));
  if (!node.places.empty()) return;
  Volume& volume = volume_of(tree, place.folder);
  if (volume.free) *volume.free += node.size;
  tree.nodes.erase(id);
}

void rename(FileTree& tree, const FilePlace& from, const FilePlace& to) {
  const NodeId id = child(tree, from.folder, from.name);
  *cut_name(tree, from) = to;
  tree.nodes.at(to.folder).children.emplace(to.name, id);
}

std::wstring path_of(const FileTree& tree, NodeId node) {
  std::vector<const std::wstring*> names;
  while (!tree.nodes.at(node).places.empty()) {
    const FilePlace& place = tree.nodes.at(node).places.front();
    names.push_back(&place.name);
    node = place.folder;
  }
  std::wstring path = volume_at(tree.volumes, node)->first;
  if (names.empty()) path += L'\\';
  for (auto name = names.rbegin(); name != names.rend(); ++name) path.append(1, L'\\').append(**name);
  return path;
}

std::uint32_t reported_attributes(const FileNode& node) {
  std::uint32_t bits = node.attributes;
  if (node.folder) bits |= attribute::directory;
  if (node.link != LinkKind::none) bits |= attribute::reparse_point;
  return bits == 0 ? attribute::normal : bits;
}

void drop_holds(FileTree& tree, NodeId node, std::uint64_t owner) {
  const auto found = tree.nodes.find(node);
  if (found == tree.nodes.end()) return;
  FileNode& held = found->second;
  std::erase_if(held.holds, [owner](const FileHold& hold) { return hold.owner == owner; });
  if (!held.going || !held.holds.empty()) return;
  held.going = false;
  remove_name(tree, FilePlace(held.going_place));
}

bool within(const FileTree& tree, NodeId node, NodeId folder) {
  while (node != folder) {
    const FileNode& at = tree.nodes.at(node);
    if (at.places.empty()) return false;
    node = at.places.front().folder;
  }
  return true;
}

}  // namespace machine
