#include "platform/machine/programs.h"

#include <algorithm>
#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "platform/machine/state.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

const Program* find_program(const Programs& programs, std::wstring_view image, std::wstring_view command_line) {
  const Program* best = nullptr;
  int best_rank = 0;
  for (const Program& program : programs) {
    const bool by_path = same_name(program.image, image);
    if (!by_path && !same_name(program.image, last_part(image))) continue;
    if (command_line.find(program.arguments) == std::wstring_view::npos) continue;
    const int rank = 1 + (by_path ? 2 : 0) + (program.arguments.empty() ? 0 : 1);
    if (rank <= best_rank) continue;
    best = &program;
    best_rank = rank;
  }
  return best;
}

bool is_told(const Programs& programs, std::wstring_view image) {
  return std::any_of(programs.begin(), programs.end(), [image](const Program& program) {
    return same_name(program.image, image) || same_name(program.image, last_part(image));
  });
}

namespace {

[[nodiscard]] Found found(const State& state, std::wstring_view path, LastLink last) {
  const ParsedPath parsed = parse_path(path, state.environment.current_folder);
  if (parsed.error != code::success) return {parsed.error, 0, {}};
  return look_up(state.files, parsed.path, last);
}

void delete_one(FileTree& tree, const Found& place) {
  FileNode& node = tree.nodes.at(place.node);
  // A program that cleans up sees to it that read-only files go too.
  if (!node.protect) node.attributes &= ~ports::file_attribute::read_only;
  if (node.holds.empty() && decide_removal(tree, place, node.folder) == code::success) remove_name(tree, place.place);
}

void delete_folder(FileTree& tree, const Found& place) {
  const FileNode& folder = tree.nodes.at(place.node);
  const auto children = folder.children;
  for (const auto& [name, id] : children) {
    const Found below{code::success, id, {place.node, name}};
    if (tree.nodes.at(id).folder) {
      delete_folder(tree, below);
    } else {
      delete_one(tree, below);
    }
  }
  delete_one(tree, place);
}

void write_file(State& state, const Effect& effect) {
  ParsedPath parsed = parse_path(effect.path, state.environment.current_folder);
  if (parsed.error != code::success || parsed.path.parts.empty()) return;
  const std::wstring name = parsed.path.parts.back();
  parsed.path.parts.pop_back();
  const NodeId folder = make_folders(state.files, parsed.path);
  if (folder == 0) return;
  NodeId id = child(state.files, folder, name);
  if (id == 0) id = add_node(state.files, folder, name, {});
  FileNode& node = state.files.nodes.at(id);
  if (node.folder || !resize(state.files, id, effect.bytes.size())) return;
  node.bytes = effect.bytes;
  node.signature.reset();
}

void delete_key(RegistryTree& tree, KeyId key) {
  const auto subkeys = tree.keys.at(key).subkeys;
  for (const auto& entry : subkeys) delete_key(tree, entry.second);
  const KeyNode& node = tree.keys.at(key);
  if (node.subkeys.empty() && !node.protect && !hive_root(tree, key)) remove_key(tree, key);
}

[[nodiscard]] KeyId key_at(const RegistryTree& tree, std::wstring_view path) {
  std::vector<std::wstring> parts = split_path(path);
  if (parts.empty()) return 0;
  const bool machine = same_name(parts.front(), local_machine_name);
  if (!machine && !same_name(parts.front(), users_name)) return 0;
  parts.erase(parts.begin());
  return find_key(tree, machine ? tree.local_machine : tree.users, parts, false).key;
}

}  // namespace

bool is_meant(const State& state, const RunningProgram& process, std::wstring_view wanted) {
  if (wanted.find(L'\\') == std::wstring_view::npos) {
    return same_name(wanted, last_part(process.image)) || same_name(wanted, process.name);
  }
  if (same_name(wanted, process.image)) return true;
  const Found one = found(state, wanted, LastLink::followed);
  return one.error == code::success && one.node == found(state, process.image, LastLink::followed).node;
}

void apply(State& state, const Effect& effect) {
  switch (effect.kind) {
    case EffectKind::delete_file:
    case EffectKind::delete_folder: {
      const Found place = found(state, effect.path, LastLink::itself);
      if (place.error != code::success) return;
      const bool folder = state.files.nodes.at(place.node).folder;
      if (folder != (effect.kind == EffectKind::delete_folder)) return;
      return folder ? delete_folder(state.files, place) : delete_one(state.files, place);
    }
    case EffectKind::write_file:
      return write_file(state, effect);
    case EffectKind::delete_key:
      if (const KeyId key = key_at(state.registry, effect.path)) delete_key(state.registry, key);
      return;
    case EffectKind::delete_value:
      if (const KeyId key = key_at(state.registry, effect.path)) state.registry.keys.at(key).values.erase(effect.name);
      return;
    case EffectKind::set_value:
      if (const KeyId key = make_keys(state.registry, effect.path)) {
        state.registry.keys.at(key).values.insert_or_assign(effect.name, effect.value);
      }
      return;
    case EffectKind::ask_to_close:
    case EffectKind::end_process:
      return;
  }
}

}  // namespace machine
