#include "tools/ky/receipt/scene.h"

#include <algorithm>
#include <utility>

#include "host/deletion/registry_target.h"
#include "installer/desktop/commands/hives/user_hives.h"
#include "installer/utils/base/strings/case_fold.h"
#include "platform/machine/environment_variables.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/path.h"
#include "platform/machine/registry_views.h"
#include "platform/ports/codes.h"
#include "platform/record/paths.h"

namespace receipt {

namespace {

namespace code = ports::code;
using base::strings::equal_ignoring_case;
using host::TargetKind;

constexpr std::wstring_view profile_list =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr std::wstring_view users_root = L"HKEY_USERS\\";

std::wstring own_name(std::wstring_view name) {
  return std::wstring(name.substr(0, name.find(ky::hive_marker)));
}

std::wstring text_of(const machine::KeyNode& key, std::wstring_view value) {
  const auto found = key.values.find(value);
  if (found == key.values.end()) return {};
  std::wstring text = machine::text_units(found->second.bytes);
  text.resize(std::min(text.find(L'\0'), text.size()));
  return text;
}

/// The names of a key's subkeys as they stand now: what follows may change them.
std::vector<std::wstring> subkeys_of(const machine::RegistryTree& tree, machine::KeyId key) {
  std::vector<std::wstring> names;
  for (const auto& [name, id] : tree.keys.at(key).subkeys) names.push_back(name);
  return names;
}

void rename_key(machine::RegistryTree& tree, machine::KeyId parent, const std::wstring& from, const std::wstring& to) {
  auto& siblings = tree.keys.at(parent).subkeys;
  if (siblings.count(to) != 0) return;
  auto moved = siblings.extract(from);
  moved.key() = to;
  tree.keys.at(moved.mapped()).name = to;
  siblings.insert(std::move(moved));
}

std::wstring name_of(const machine::RunningProgram& process) {
  return process.name.empty() ? std::wstring(machine::last_part(process.image)) : process.name;
}

}  // namespace

Scene::Scene(machine::State state) : state_(std::move(state)) {
  for (const std::wstring& name : subkeys_of(state_.registry, state_.registry.users)) {
    if (host::is_user_key(name)) at_hand_.push_back(own_name(name));
  }
  mount_all();
}

void Scene::mount_all() {
  machine::RegistryTree& tree = state_.registry;
  for (const std::wstring& name : subkeys_of(tree, tree.users)) {
    if (ky::IsMountName(name)) rename_key(tree, tree.users, name, own_name(name));
  }
  const std::vector<std::wstring> way = machine::split_path(profile_list);
  const machine::KeyFound profiles = machine::find_key(tree, tree.local_machine, {way.begin() + 1, way.end()}, true);
  if (profiles.error != code::success) return;
  for (const std::wstring& sid : subkeys_of(tree, profiles.key)) {
    if (!ky::IsPersonsProfile(sid) || machine::subkey(tree, tree.users, sid) != 0) continue;
    const std::wstring stored = text_of(tree.keys.at(machine::subkey(tree, profiles.key, sid)), L"ProfileImagePath");
    const std::wstring file = machine::expand_variables(state_.environment, stored) + L"\\NTUSER.DAT";
    const machine::NodeId node = file_of(file);
    if (node == 0) continue;
    // Whoever has it open, and whatever forbids writing to it, is in nobody's way here.
    machine::FileNode& hive = state_.files.nodes.at(node);
    hive.holds.clear();
    hive.attributes = 0;
    hive.protect = false;
    hive.mapped = false;
    hive.images = 0;
    (void)machine::mount_hive(state_, tree.users, sid, file);
  }
}

std::vector<std::wstring> Scene::users() const {
  std::vector<std::wstring> names;
  for (const std::wstring& name : subkeys_of(state_.registry, state_.registry.users)) {
    if (host::is_user_key(name)) names.push_back(name);
  }
  return names;
}

machine::NodeId Scene::file_of(std::wstring_view path) const {
  const machine::ParsedPath parsed = machine::parse_path(path, state_.environment.current_folder);
  if (parsed.error != code::success) return 0;
  const machine::Found found = machine::look_up(state_.files, parsed.path, machine::LastLink::followed);
  return found.error == code::success ? found.node : 0;
}

Sight Scene::look(const Target& target) const {
  switch (target.kind) {
    case TargetKind::file:
    case TargetKind::folder:
      return look_at_path(target.path);
    case TargetKind::registry_key:
    case TargetKind::registry_value:
      return look_at_key(target);
    case TargetKind::task:
      return look_at_task(target.path);
    case TargetKind::driver_package:
      return look_at_driver(target.path);
    case TargetKind::process_file:
    case TargetKind::process_name:
      return look_at_process(target);
    case TargetKind::ifeo_keys:
      break;
  }
  return {};
}

Sight Scene::look_at_path(std::wstring_view path) const {
  while (path.size() > 3 && path.ends_with(L'\\')) path.remove_suffix(1);
  machine::ParsedPath parsed = machine::parse_path(path, state_.environment.current_folder);
  // What is too long a path for some commands is there all the same.
  if (parsed.error == code::filename_too_long) {
    parsed = machine::parse_path(L"\\\\?\\" + record::plain_path(path), state_.environment.current_folder);
  }
  if (parsed.error != code::success) return {};
  const machine::Found found = machine::look_up(state_.files, parsed.path, machine::LastLink::itself);
  if (found.error == code::access_denied) return {true, L"it goes as soon as nobody has it open"};
  return {found.error == code::success};
}

Sight Scene::look_at_key(const Target& target) const {
  const std::optional<RootedKey> rooted = split_key(under_own_name(target.path));
  if (!rooted) return {};
  const machine::RegistryTree& tree = state_.registry;
  machine::RegistryWay way{tree.local_machine, machine::split_path(rooted->subkey)};
  if (rooted->root == L"HKEY_USERS") way.from = tree.users;
  if (rooted->root == L"HKEY_CURRENT_USER") {
    way.from = tree.users;
    way.parts.insert(way.parts.begin(), state_.environment.user);
  }
  if (rooted->root == L"HKEY_CLASSES_ROOT") way.parts.insert(way.parts.begin(), {L"SOFTWARE", L"Classes"});
  if (state_.environment.wow64 && !target.view_64) way = machine::in_view_32(tree, std::move(way));
  const bool value = target.kind == TargetKind::registry_value;
  const machine::KeyFound found = machine::find_key(tree, way.from, way.parts, false);
  if (found.error != code::success) return {};
  return {!value || tree.keys.at(found.key).values.count(target.value) != 0};
}

Sight Scene::look_at_task(const std::wstring& name) const {
  const auto& tasks = state_.scheduled_tasks.tasks;
  const auto found = tasks.find(machine::task_folder_path(name));
  if (found == tasks.end()) return {};
  const std::wstring registered(machine::last_part(found->first));
  if (registered != name) {
    const bool same_word = equal_ignoring_case(registered, name);
    return {true, L"it is registered as '" + registered +
                      (same_word ? L"', and case counts" : L"', and that alone is compared")};
  }
  return {true, state_.scheduled_tasks.running ? L"" : L"the task scheduler does not run"};
}

Sight Scene::look_at_driver(const std::wstring& inf) const {
  const auto& nodes = state_.files.nodes;
  if (const machine::NodeId folder = file_of(state_.environment.windows + L"\\INF"); folder != 0) {
    for (const auto& [name, node] : nodes.at(folder).children) {
      const std::wstring& store = nodes.at(node).store;
      if (!store.empty() && equal_ignoring_case(machine::last_part(store), inf)) {
        return {true, L"it stands in the store as '" + name + L"'"};
      }
    }
  }
  const machine::NodeId store = file_of(state_.environment.system + L"\\DriverStore\\FileRepository");
  if (store == 0) return {};
  for (const auto& [name, node] : nodes.at(store).children) {
    if (machine::child(state_.files, node, inf) == 0) continue;
    return {true, L"the store has it in '" + name + L"', and no INF file leads there"};
  }
  return {};
}

Sight Scene::look_at_process(const Target& target) const {
  const machine::NodeId file = target.kind == TargetKind::process_file ? file_of(target.path) : 0;
  const auto matches = [&](const machine::RunningProgram& process) {
    if (target.kind == TargetKind::process_name) return name_of(process).starts_with(target.path);
    return equal_ignoring_case(process.image, target.path) || (file != 0 && file_of(process.image) == file);
  };
  Sight sight;
  const auto add = [&](const machine::RunningProgram& process) {
    if (!matches(process)) return;
    sight.there = true;
    sight.note += (sight.note.empty() ? L"" : L", ") + (L"'" + process.image) + L"' runs";
  };
  for (const machine::RunningProgram& process : state_.processes) add(process);
  if (state_.environment.parent) add(*state_.environment.parent);
  return sight;
}

std::wstring under_own_name(std::wstring_view path) {
  std::wstring text(path);
  if (!text.starts_with(users_root)) return text;
  const std::size_t end = std::min(text.find(L'\\', users_root.size()), text.size());
  const std::size_t marker = text.find(ky::hive_marker, users_root.size());
  if (marker < end) text.erase(marker, end - marker);
  return text;
}

}  // namespace receipt
