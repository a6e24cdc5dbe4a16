#include "platform/machine/file_rules.h"

#include <algorithm>

#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;
namespace access = ports::file_access;
namespace attribute = ports::file_attribute;
using ports::Disposition;
using ports::ErrorCode;

namespace {

[[nodiscard]] bool runs(const FileNode& node) {
  return node.mapped || node.images > 0;
}

constexpr std::uint32_t generic_all = 0x10000000;
constexpr std::uint32_t generic_execute = 0x20000000;
constexpr std::uint32_t reading = file_right::read_data | file_right::execute;
constexpr std::uint32_t writing = file_right::write_data | file_right::append_data;
constexpr std::uint32_t all_rights = 0x1F01FF;
constexpr std::uint32_t changing = writing | access::write_attributes | access::erase;

[[nodiscard]] ErrorCode shared(const FileNode& node, std::uint32_t wanted, std::uint32_t share) {
  const bool excluded = std::any_of(node.holds.begin(), node.holds.end(),
                                    [wanted, share](const FileHold& hold) { return excludes(hold, wanted, share); });
  // A program's image cannot be written to while it runs, but it can be renamed.
  return excluded || (runs(node) && (wanted & writing) != 0) ? code::sharing_violation : code::success;
}

}  // namespace

std::uint32_t mapped_access(std::uint32_t asked) {
  std::uint32_t rights = asked & ~(access::generic_read | access::generic_write | generic_execute | generic_all);
  if ((asked & access::generic_read) != 0) rights |= file_right::read_data | access::read_attributes;
  if ((asked & access::generic_write) != 0) rights |= writing | access::write_attributes;
  if ((asked & generic_execute) != 0) rights |= file_right::execute | access::read_attributes;
  if ((asked & generic_all) != 0) rights |= all_rights;
  return rights;
}

bool excludes(const FileHold& standing, std::uint32_t wanted, std::uint32_t share) {
  constexpr std::uint32_t claims = reading | writing | access::erase;
  if ((wanted & claims) == 0 || (standing.access & claims) == 0) return false;
  const auto forbids = [](std::uint32_t rights, std::uint32_t allowed) {
    return ((rights & reading) != 0 && (allowed & ports::file_share::read) == 0) ||
           ((rights & writing) != 0 && (allowed & ports::file_share::write) == 0) ||
           ((rights & access::erase) != 0 && (allowed & ports::file_share::erase) == 0);
  };
  return forbids(wanted, standing.share) || forbids(standing.access, share);
}

namespace {

[[nodiscard]] OpenDecision decide_open_existing(const FileNode& node, const OpenRequest& request, bool folder_wanted) {
  const std::uint32_t wanted = mapped_access(request.access);
  const bool empties =
      request.disposition == Disposition::create_always || request.disposition == Disposition::truncate_existing;
  if (node.folder) {
    if (empties) return {code::access_denied};
    if ((request.flags & ports::open_flag::backup_semantics) == 0) {
      return {folder_wanted ? code::path_not_found : code::access_denied};
    }
  } else if ((node.attributes & attribute::read_only) != 0 && (empties || (wanted & writing) != 0)) {
    return {code::access_denied};
  }
  // The caller would have to name these attributes to overwrite such a file; it asks for none.
  const bool special = (node.attributes & (attribute::hidden | attribute::system)) != 0;
  if (request.disposition == Disposition::create_always && special) return {code::access_denied};
  if (node.protect && (empties || (wanted & changing) != 0)) return {code::access_denied};
  const ErrorCode error = shared(node, empties ? wanted | file_right::write_data : wanted, request.share);
  return {error, empties ? OpenAct::empty : OpenAct::open};
}

}  // namespace

OpenDecision decide_open(const FileTree& tree, const Found& found, const OpenRequest& request, bool folder_wanted) {
  const bool makes = request.disposition == Disposition::create_new ||
                     request.disposition == Disposition::create_always ||
                     request.disposition == Disposition::open_always;
  if (!makes && request.disposition != Disposition::open_existing &&
      request.disposition != Disposition::truncate_existing) {
    return {code::invalid_parameter};
  }
  if (request.disposition == Disposition::truncate_existing &&
      (mapped_access(request.access) & file_right::write_data) == 0) {
    return {code::invalid_parameter};
  }
  if (found.error == code::file_not_found && makes) {
    if (folder_wanted) return {code::invalid_name};
    if (tree.nodes.at(found.place.folder).protect) return {code::access_denied};
    return {code::success, OpenAct::create};
  }
  if (found.error != code::success) return {found.error};
  if (request.disposition == Disposition::create_new) return {code::file_exists};
  return decide_open_existing(tree.nodes.at(found.node), request, folder_wanted);
}

ErrorCode may_go(const FileNode& node) {
  if (node.places.empty()) return code::access_denied;
  if ((node.attributes & attribute::read_only) != 0) return code::access_denied;
  if (runs(node)) return code::access_denied;
  if (!node.children.empty()) return code::directory_not_empty;
  return code::success;
}

ErrorCode decide_removal(const FileTree& tree, const Found& found, bool folder) {
  if (found.error != code::success) return found.error;
  const FileNode& node = tree.nodes.at(found.node);
  if (folder && !node.folder) return code::directory_name_invalid;
  if (!folder && node.folder) return code::access_denied;
  if (node.protect) return code::access_denied;
  const ErrorCode error = shared(node, access::erase, ports::file_share::all);
  return error != code::success ? error : may_go(node);
}

AttributeDecision decide_attributes(const FileNode& node, std::uint32_t asked) {
  constexpr std::uint32_t settable = attribute::read_only | attribute::hidden | attribute::system | attribute::archive |
                                     attribute::temporary | 0x1000 | 0x2000;  // offline, not indexed
  if (node.protect) return {code::access_denied, node.attributes};
  if (node.folder && (asked & attribute::temporary) != 0) return {code::invalid_parameter, node.attributes};
  return {code::success, asked & settable};
}

namespace {

[[nodiscard]] bool open_below(const FileTree& tree, NodeId id) {
  const FileNode& node = tree.nodes.at(id);
  return std::any_of(node.children.begin(), node.children.end(), [&tree](const auto& entry) {
    return !tree.nodes.at(entry.second).holds.empty() || open_below(tree, entry.second);
  });
}

[[nodiscard]] ErrorCode may_replace(const FileNode& node) {
  const bool blocked =
      node.folder || node.protect || runs(node) || !node.holds.empty() || (node.attributes & attribute::read_only) != 0;
  return blocked ? code::access_denied : code::success;
}

}  // namespace

MoveDecision decide_move(const FileTree& tree, const Found& from, const Found& to, std::uint32_t flags) {
  if (from.error != code::success) return {from.error};
  const FileNode& source = tree.nodes.at(from.node);
  if (source.places.empty() || source.protect) return {code::access_denied};
  const ErrorCode error = shared(source, access::erase, ports::file_share::all);
  return error == code::success ? decide_rename(tree, from, to, flags) : MoveDecision{error};
}

MoveDecision decide_rename(const FileTree& tree, const Found& from, const Found& to, std::uint32_t flags) {
  const FileNode& source = tree.nodes.at(from.node);
  if (source.places.empty() || source.protect) return {code::access_denied};
  if (source.folder && open_below(tree, from.node)) return {code::access_denied};
  if (to.error == code::invalid_name && to.node == 0) return {code::invalid_name};
  if (to.node == 0 && to.place.folder == 0) return {to.error};
  MoveDecision decision;
  if (to.node != 0 && to.node != from.node) {
    if ((flags & ports::move_flag::replace_existing) == 0) return {code::already_exists};
    if (to.error != code::success || to.place.folder == 0) return {code::access_denied};
    decision.error = may_replace(tree.nodes.at(to.node));
    if (decision.error != code::success) return decision;
    decision.replaces = true;
  }
  if (to.place.folder == 0 || tree.nodes.at(to.place.folder).protect) return {code::access_denied};
  if (within(tree, to.place.folder, from.node)) return {code::sharing_violation};
  if (&volume_of(tree, from.node) != &volume_of(tree, to.place.folder)) {
    if (source.folder || (flags & ports::move_flag::copy_allowed) == 0) return {code::not_same_device};
    decision.copies = true;
  }
  return decision;
}

}  // namespace machine
