#include "platform/machine/hives.h"

#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "platform/machine/hive_content.h"
#include "platform/machine/state.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

namespace {

// The system opens the file for itself alone.
[[nodiscard]] Found find_hive(const State& state, std::wstring_view file) {
  const ParsedPath parsed = parse_path(file, state.environment.current_folder);
  if (parsed.error != code::success) return {parsed.error, 0, {}};
  Found found = look_up(state.files, parsed.path, LastLink::followed);
  const OpenRequest request{ports::file_access::generic_read | ports::file_access::generic_write, 0,
                            ports::Disposition::open_existing, 0};
  found.error = decide_open(state.files, found, request, parsed.path.folder_wanted).error;
  return found;
}

}  // namespace

void hold_hive(State& state, KeyId key, NodeId file) {
  state.files.nodes.at(file).holds.push_back(
      {mapped_access(ports::file_access::generic_read | ports::file_access::generic_write), 0, hive_owner});
  state.hives.emplace(key, file);
}

ports::ErrorCode mount_hive(State& state, KeyId root, std::wstring_view name, std::wstring_view file) {
  const Found found = find_hive(state, file);
  if (found.error != code::success) return found.error;
  if (subkey(state.registry, root, name) != 0) return code::already_exists;
  const KeyId key = add_key(state.registry, root, name);
  if (!read_hive(state.files.nodes.at(found.node).bytes.all(), state.registry, key)) {
    remove_keys(state.registry, key);
    return code::bad_database;
  }
  hold_hive(state, key, found.node);
  return code::success;
}

ports::ErrorCode unmount_hive(State& state, KeyId key) {
  const auto mounted = state.hives.find(key);
  if (mounted == state.hives.end()) return code::invalid_parameter;
  const NodeId file = mounted->second;
  std::vector<std::uint8_t> bytes = hive_bytes(state.registry, key);
  if (!resize(state.files, file, bytes.size())) return code::disk_full;
  state.files.nodes.at(file).bytes = std::move(bytes);
  remove_keys(state.registry, key);
  state.hives.erase(mounted);
  drop_holds(state.files, file, hive_owner);
  return code::success;
}

}  // namespace machine
