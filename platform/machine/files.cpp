#include "platform/machine/files.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/machine/desk_copies.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "platform/machine/handles.h"
#include "platform/machine/open_file.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

// Open files; what goes by path alone stands in files_by_path.cpp.
namespace machine {

namespace code = ports::code;
using ports::ErrorCode;
using ports::Handle;

bool Files::fail(ErrorCode error) {
  errors_.set_last(error);
  return false;
}

ErrorCode Files::parsed(const wchar_t* path, Path& out) {
  if (path == nullptr) return code::path_not_found;
  ParsedPath result = parse_path(path, world_.state.environment.current_folder);
  out = std::move(result.path);
  // The system is not one about this: only the making of folders tells that a path is too long.
  return result.error == code::filename_too_long ? code::path_not_found : result.error;
}

Found Files::found(const wchar_t* path, LastLink last) {
  Path clean;
  const ErrorCode error = parsed(path, clean);
  return error == code::success ? look_up(world_.state.files, clean, last) : Found{error, 0, {}};
}

namespace {

// Attributes may stand in the flags, as the system has it.
constexpr std::uint32_t attribute_flags = 0x1A7;

[[nodiscard]] NodeId make_file(FileTree& tree, const FilePlace& place, std::uint32_t flags) {
  FileNode made;
  made.attributes = decide_attributes(made, flags & attribute_flags).attributes | ports::file_attribute::archive;
  return add_node(tree, place.folder, place.name, std::move(made));
}

}  // namespace

Handle Files::open(const wchar_t* path, std::uint32_t access, std::uint32_t share, ports::Disposition disposition,
                   std::uint32_t flags) {
  std::shared_ptr<OpenFile> file;
  bool was_there = false;
  bool emptied = false;
  {
    const ports::Lock lock(world_.mutex);
    FileTree& tree = world_.state.files;
    Path clean;
    const ErrorCode error = parsed(path, clean);
    const bool itself = (flags & ports::open_flag::open_reparse_point) != 0;
    const Found place = error != code::success ? Found{error, 0, {}}
                                               : look_up(tree, clean, itself ? LastLink::itself : LastLink::followed);
    const OpenDecision decision = decide_open(tree, place, {access, share, disposition, flags}, clean.folder_wanted);
    if (!done(decision.error)) return Handle::invalid;
    was_there = decision.act != OpenAct::create;
    const NodeId node = was_there ? place.node : make_file(tree, place.place, flags);
    if (decision.act == OpenAct::empty && !resize(tree, node, 0)) return failed(code::disk_full, Handle::invalid);
    emptied = decision.act == OpenAct::empty;
    const std::uint32_t rights = mapped_access(access);
    file = std::make_shared<OpenFile>(world_, copies_, node, place.place, rights, ++world_.last_owner);
    tree.nodes.at(node).holds.push_back({rights, share, file->owner});
  }
  if (emptied) copies_.settle();
  const bool may_make =
      disposition == ports::Disposition::open_always || disposition == ports::Disposition::create_always;
  const Handle handle = handles_.open(std::move(file));
  if (was_there && may_make) errors_.set_last(code::already_exists);
  return handle;
}

bool Files::read(Handle handle, std::span<std::uint8_t> into, std::uint32_t& got) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  if ((file->access & file_right::read_data) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  const FileNode& node = world_.state.files.nodes.at(file->node);
  const std::uint64_t left = node.size > file->position ? node.size - file->position : 0;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, into.size()));
  node.bytes.read(static_cast<std::size_t>(file->position), into.first(count));
  file->position += count;
  got = static_cast<std::uint32_t>(count);
  return true;
}

bool Files::write(Handle handle, std::span<const std::uint8_t> bytes, std::uint32_t& written) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  const bool anywhere = (file->access & file_right::write_data) != 0;
  if (!anywhere && (file->access & file_right::append_data) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  FileTree& tree = world_.state.files;
  FileNode& node = tree.nodes.at(file->node);
  const std::uint64_t begin = anywhere ? file->position : node.size;
  const std::uint64_t end = begin + bytes.size();
  if (end > node.size && !resize(tree, file->node, end)) return fail(code::disk_full);
  node.bytes.write(static_cast<std::size_t>(begin), bytes);
  if (!bytes.empty()) spoil_signature(node);
  file->position = end;
  written = static_cast<std::uint32_t>(bytes.size());
  return true;
}

bool Files::flush(Handle handle) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  const bool writes = (file->access & (file_right::write_data | file_right::append_data)) != 0;
  return writes || fail(code::access_denied);
}

bool Files::information(Handle handle, ports::FileInformation& out) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  const ports::Lock lock(world_.mutex);
  const FileNode& node = world_.state.files.nodes.at(file->node);
  const std::size_t names = std::max<std::size_t>(node.places.size(), 1) - (node.going ? 1 : 0);
  out = {reported_attributes(node), node.size, static_cast<std::uint32_t>(names),
         volume_of(world_.state.files, file->node).serial, file->node};
  return true;
}

bool Files::identity(Handle handle, ports::FileIdentity& out) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  const ports::Lock lock(world_.mutex);
  const Volume& volume = volume_of(world_.state.files, file->node);
  if (!volume.identities) return fail(code::invalid_parameter);
  out = {};
  out.volume = volume.serial;
  for (std::size_t i = 0; i < sizeof(NodeId); ++i) out.id[i] = static_cast<std::uint8_t>(file->node >> (8 * i));
  return true;
}

ports::Status Files::case_sensitivity(Handle handle, std::uint32_t& flags) {
  const auto folder = handles_.find_as<OpenFile>(handle);
  if (folder == nullptr) return ports::status::invalid_handle;
  const ports::Lock lock(world_.mutex);
  if (!volume_of(world_.state.files, folder->node).case_query) return ports::status::invalid_info_class;
  const FileNode& node = world_.state.files.nodes.at(folder->node);
  if (!node.folder) return ports::status::invalid_parameter;
  flags = case_sensitive(node) ? 1 : 0;
  return ports::status::success;
}

bool Files::mark_deleted(Handle handle) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  if ((file->access & ports::file_access::erase) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  FileNode& node = world_.state.files.nodes.at(file->node);
  if (node.going) return true;
  if (!done(may_go(node))) return false;
  // It may have been renamed since it was opened.
  const bool there = std::find(node.places.begin(), node.places.end(), file->place) != node.places.end();
  node.going = true;
  node.going_place = there ? file->place : node.places.front();
  return true;
}

bool Files::set_attributes_of(Handle handle, std::uint32_t attributes) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  if ((file->access & ports::file_access::write_attributes) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  FileNode& node = world_.state.files.nodes.at(file->node);
  // Here 0 means no change, and a folder's bit on a file is refused.
  if (attributes == 0) return true;
  if ((attributes & ports::file_attribute::directory) != 0 && !node.folder) return fail(code::invalid_parameter);
  const AttributeDecision decision = decide_attributes(node, attributes);
  node.attributes = decision.attributes;
  return done(decision.error);
}

}  // namespace machine
