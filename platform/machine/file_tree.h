#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/machine/file_bytes.h"
#include "platform/machine/names.h"
#include "platform/machine/signature.h"

namespace machine {

/// Names a file or folder for as long as it is there, whatever it is called: its identity. 0 is none.
using NodeId = std::uint64_t;

enum class LinkKind { none, symbolic, junction };

/// An open handle's claim on a file. Owner 0 is somebody outside who never lets go.
struct FileHold {
  std::uint32_t access = 0;  // mapped rights, see file_rules.h
  std::uint32_t share = 0;
  std::uint64_t owner = 0;
  friend bool operator==(const FileHold&, const FileHold&) = default;
};

/// One name of a file: the folder that it stands in, and how it is written there.
struct FilePlace {
  NodeId folder = 0;
  std::wstring name;
  friend bool operator==(const FilePlace&, const FilePlace&) = default;
};

using Children = std::map<std::wstring, NodeId, ChildOrder>;

/// A file, folder or link.
struct FileNode {
  bool folder = false;           // also of a link to a folder
  std::uint32_t attributes = 0;  // what is set by hand; `reported_attributes` adds the rest
  std::uint64_t size = 0;
  FileBytes bytes;  // the content's beginning; zeros up to `size`
  LinkKind link = LinkKind::none;
  std::wstring target;       // of a link
  std::wstring store;        // of an INF file: the path that it came from in the driver store
  bool protect = false;      // only reading is allowed
  std::uint32_t images = 0;  // programs and modules that this run has going from it
  std::optional<Signature> signature;
  bool mapped = false;    // somebody outside runs it
  bool going = false;     // goes when the last hold does
  FilePlace going_place;  // the name that goes
  std::vector<FileHold> holds;
  Children children;  // its order tells whether the folder tells names apart by case
  std::map<std::wstring, std::wstring, NameLess> short_names;  // of children, with the names that they stand for
  std::vector<FilePlace> places;                               // all its names; none for a drive's root
  NodeId root = 0;  // its drive's root, for good: nothing is moved to another drive
};

struct Volume {
  NodeId root = 0;
  std::uint32_t serial = 0;
  bool identities = true;             // GetFileInformationByHandleEx knows FileIdInfo there
  bool case_query = true;             // NtQueryInformationFile knows FileCaseSensitiveInformation there
  std::optional<std::uint64_t> free;  // bytes that can still be written; none for no end
  std::wstring device;                // "\\Device\\HarddiskVolume2"; empty for one by the order of letters
};

/// All drives and what lies on them.
struct FileTree {
  std::map<std::wstring, Volume, NameLess> volumes;            // by drive, "C:"
  std::map<std::wstring, std::wstring, NameLess> substitutes;  // by drive: the folder that it stands for
  std::unordered_map<NodeId, FileNode> nodes;
  NodeId last_node = 0;
  std::uint32_t next_temporary = 0x1000;  // four digits, as names of temporary files mostly have
};

/// Makes an empty drive.
Volume& add_volume(FileTree& tree, std::wstring_view drive, std::uint32_t serial);
/// The volume that a node lies on.
[[nodiscard]] const Volume& volume_of(const FileTree& tree, NodeId node);
[[nodiscard]] Volume& volume_of(FileTree& tree, NodeId node);

/// Books that a node's size changes on its volume; false where there is no room, and nothing is changed.
[[nodiscard]] bool resize(FileTree& tree, NodeId node, std::uint64_t size);

/// Whether a folder tells names apart by case.
[[nodiscard]] inline bool case_sensitive(const FileNode& folder) {
  return folder.children.key_comp().exact;
}
/// To be asked of a folder without two names that differ in nothing but case.
void set_case_sensitive(FileNode& folder, bool on);

/// The child of that name, in full or short.
[[nodiscard]] Children::const_iterator find_child(const FileNode& folder, std::wstring_view name);
[[nodiscard]] NodeId child(const FileTree& tree, NodeId folder, std::wstring_view name);
/// Puts a new node into a folder where that name is free.
NodeId add_node(FileTree& tree, NodeId folder, std::wstring_view name, FileNode node);
/// Gives a node one more name.
void add_name(FileTree& tree, NodeId node, const FilePlace& place);
/// Takes a name away; the node goes with its last one.
void remove_name(FileTree& tree, const FilePlace& place);
/// Gives the node another name instead of one it has, which must be free or its own.
void rename(FileTree& tree, const FilePlace& from, const FilePlace& to);

/// Books that a node's content was written to: its signature no longer fits.
void spoil_signature(FileNode& node);

/// The full path by its first name.
[[nodiscard]] std::wstring path_of(const FileTree& tree, NodeId node);
/// As GetFileAttributesW tells it.
[[nodiscard]] std::uint32_t reported_attributes(const FileNode& node);

/// Ends the owner's holds; a node that was waiting for that goes.
void drop_holds(FileTree& tree, NodeId node, std::uint64_t owner);

/// True when `node` is `folder` or lies below it.
[[nodiscard]] bool within(const FileTree& tree, NodeId node, NodeId folder);

}  // namespace machine
