#include <algorithm>
#include <string>
#include <utility>

#include "platform/machine/desk_copies.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "platform/machine/files.h"
#include "platform/machine/handles.h"
#include "platform/machine/open_file.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::ErrorCode;

std::uint32_t Files::attributes(const wchar_t* path) {
  const ports::Lock lock(world_.mutex);
  const Found place = found(path, LastLink::itself);
  if (!done(place.error)) return ports::file_attribute::invalid;
  return reported_attributes(world_.state.files.nodes.at(place.node));
}

bool Files::set_attributes(const wchar_t* path, std::uint32_t attributes) {
  const ports::Lock lock(world_.mutex);
  const Found place = found(path, LastLink::itself);
  if (!done(place.error)) return false;
  FileNode& node = world_.state.files.nodes.at(place.node);
  const AttributeDecision decision = decide_attributes(node, attributes);
  node.attributes = decision.attributes;
  return done(decision.error);
}

bool Files::exists(const wchar_t* path) {
  return attributes(path) != ports::file_attribute::invalid;
}

bool Files::remove_as(const wchar_t* path, bool folder) {
  const ports::Lock lock(world_.mutex);
  FileTree& tree = world_.state.files;
  const Found place = found(path, LastLink::itself);
  if (!done(decide_removal(tree, place, folder))) return false;
  FileNode& node = tree.nodes.at(place.node);
  if (node.holds.empty()) {
    remove_name(tree, place.place);
  } else {
    node.going = true;
    node.going_place = place.place;
  }
  return true;
}

bool Files::remove(const wchar_t* path) {
  const bool removed = remove_as(path, false);
  if (removed) copies_.settle();
  return removed;
}

bool Files::remove_folder(const wchar_t* path) {
  return remove_as(path, true);
}

bool Files::create_folder(const wchar_t* path) {
  const ports::Lock lock(world_.mutex);
  FileTree& tree = world_.state.files;
  const std::wstring_view text = path == nullptr ? L"" : path;
  ParsedPath parsed_path = parse_path(text, world_.state.environment.current_folder);
  if (!done(parsed_path.error)) return false;
  Path& clean = parsed_path.path;
  const bool verbatim = text.substr(0, 4) == L"\\\\?\\";
  if (!verbatim && to_text(clean).size() >= max_new_folder) return fail(code::filename_too_long);
  clean.folder_wanted = false;
  const Found place = look_up(tree, clean, LastLink::itself);
  if (place.error == code::success) return fail(code::already_exists);
  if (place.error != code::file_not_found) return fail(place.error);
  if (tree.nodes.at(place.place.folder).protect) return fail(code::access_denied);
  FileNode made;
  made.folder = true;
  set_case_sensitive(made, case_sensitive(tree.nodes.at(place.place.folder)));
  add_node(tree, place.place.folder, place.place.name, std::move(made));
  return true;
}

bool Files::create_link(const wchar_t* link, const wchar_t* target, bool to_folder) {
  const ports::Lock lock(world_.mutex);
  if (!world_.state.environment.may_link) return fail(code::privilege_not_held);
  FileTree& tree = world_.state.files;
  const Found place = found(link, LastLink::itself);
  if (place.error == code::success) return fail(code::already_exists);
  if (place.error != code::file_not_found) return fail(place.error);
  if (target == nullptr || *target == 0) return fail(code::invalid_parameter);
  if (tree.nodes.at(place.place.folder).protect) return fail(code::access_denied);
  FileNode made;
  made.folder = to_folder;
  made.attributes = to_folder ? 0 : ports::file_attribute::archive;
  made.link = LinkKind::symbolic;
  made.target = target;
  std::replace(made.target.begin(), made.target.end(), L'/', L'\\');
  add_node(tree, place.place.folder, place.place.name, std::move(made));
  return true;
}

ErrorCode Files::move_now(const Path& from, const Path& to, std::uint32_t flags) {
  FileTree& tree = world_.state.files;
  const Found source = look_up(tree, from, LastLink::itself);
  Found target = look_up(tree, to, LastLink::itself);
  // The name as the caller writes it, since a move may change nothing but its case.
  if (target.place.folder != 0 && !to.parts.empty()) target.place.name = to.parts.back();
  const MoveDecision decision = decide_move(tree, source, target, flags);
  if (decision.error != code::success) return decision.error;
  if (decision.replaces) remove_name(tree, target.place);
  if (!decision.copies) {
    machine::rename(tree, source.place, target.place);
    return code::success;
  }
  FileNode copy = tree.nodes.at(source.node);
  copy.holds.clear();
  const std::uint64_t size = std::exchange(copy.size, 0);
  copy.places.clear();
  const NodeId made = add_node(tree, target.place.folder, target.place.name, std::move(copy));
  if (!resize(tree, made, size)) {
    remove_name(tree, target.place);
    return code::disk_full;
  }
  remove_name(tree, source.place);
  return code::success;
}

bool Files::rename(ports::Handle handle, const wchar_t* to) {
  const auto file = handles_.find_as<OpenFile>(handle);
  if (file == nullptr) return fail(code::invalid_handle);
  if ((file->access & ports::file_access::erase) == 0) return fail(code::access_denied);
  {
    const ports::Lock lock(world_.mutex);
    FileTree& tree = world_.state.files;
    const FileNode& node = tree.nodes.at(file->node);
    if (node.going || node.places.empty()) return fail(code::access_denied);
    Path path;
    if (!done(parsed(to, path))) return false;
    const bool there = std::find(node.places.begin(), node.places.end(), file->place) != node.places.end();
    const Found source{code::success, file->node, there ? file->place : node.places.front()};
    Found target = look_up(tree, path, LastLink::itself);
    if (target.place.folder != 0 && !path.parts.empty()) target.place.name = path.parts.back();
    const MoveDecision decision = decide_rename(tree, source, target, ports::move_flag::replace_existing);
    if (!done(decision.error)) return false;
    if (decision.replaces) remove_name(tree, target.place);
    machine::rename(tree, source.place, target.place);
  }
  copies_.settle();
  return true;
}

// Nothing is looked up: what is absent now may be there at the next start.
ErrorCode Files::book_move(const Path& from, const wchar_t* to, std::uint32_t flags) {
  if ((flags & ports::move_flag::copy_allowed) != 0) return code::invalid_parameter;
  PendingMove booked{to_text(from), {}, (flags & ports::move_flag::replace_existing) != 0 && to != nullptr};
  if (to != nullptr) {
    Path target;
    const ErrorCode error = parsed(to, target);
    if (error != code::success) return error;
    booked.to = to_text(target);
  }
  world_.state.pending_moves.push_back(std::move(booked));
  return code::success;
}

bool Files::move_or_book(const wchar_t* from, const wchar_t* to, std::uint32_t flags) {
  const ports::Lock lock(world_.mutex);
  const bool later = (flags & ports::move_flag::delay_until_reboot) != 0;
  if (to == nullptr && !later) return fail(code::invalid_parameter);
  Path source;
  if (!done(parsed(from, source))) return false;
  if (later) return done(book_move(source, to, flags));
  Path target;
  if (!done(parsed(to, target))) return false;
  return done(move_now(source, target, flags));
}

bool Files::move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) {
  const bool moved = move_or_book(from, to, flags);
  if (moved) copies_.settle();
  return moved;
}

}  // namespace machine
