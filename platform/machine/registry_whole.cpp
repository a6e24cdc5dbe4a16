#include <algorithm>

#include "platform/machine/environment_variables.h"
#include "platform/machine/hives.h"
#include "platform/machine/privileges.h"
#include "platform/machine/registry.h"
#include "platform/ports/codes.h"

// Operations that do more than one step: texts by path, whole trees, hives.
namespace machine {

namespace code = ports::code;
namespace right = ports::registry_access;
using ports::ErrorCode;
using ports::RegistryKey;

ErrorCode Registry::get_text(RegistryKey key, const wchar_t* subkey, const wchar_t* name, std::span<wchar_t> into,
                             std::uint32_t& size) {
  const ports::Lock lock(world_.mutex);
  KeyFound found;
  const bool below = subkey != nullptr && *subkey != 0;
  const ErrorCode error = find(key, below ? 0 : right::query_value, subkey, found);
  if (error != code::success) return error;
  const auto& values = world_.state.registry.keys.at(found.key).values;
  const auto value = values.find(std::wstring_view(name == nullptr ? L"" : name));
  if (value == values.end()) return code::file_not_found;
  const bool expandable = value->second.type == ports::RegistryType::expandable;
  if (!expandable && value->second.type != ports::RegistryType::text) return code::unsupported_type;
  std::wstring text = text_units(value->second.bytes);
  // What is expanded ends at its terminator; what is not comes as it is, with one at the end.
  if (expandable) text = expand_variables(world_.state.environment, text.c_str());
  if (text.empty() || text.back() != 0) text.push_back(0);
  size = static_cast<std::uint32_t>(text.size() * 2);
  if (into.empty()) return code::success;
  if (into.size() < text.size()) return code::more_data;
  std::copy(text.begin(), text.end(), into.begin());
  return code::success;
}

namespace {

// As deep as keys can lie. Links can lead a walk round for ever.
constexpr int deepest = 512;

[[nodiscard]] ErrorCode remove_found(RegistryTree& tree, KeyId key, int depth);

// Each subkey is opened by its name, which follows a link. The link itself is left and then leads nowhere.
[[nodiscard]] ErrorCode empty_key(RegistryTree& tree, KeyId key, int depth) {
  if (depth == 0) return code::filename_too_long;
  while (tree.keys.count(key) != 0 && !tree.keys.at(key).subkeys.empty()) {
    const KeyFound found = find_key(tree, key, {tree.keys.at(key).subkeys.begin()->first}, true);
    if (found.error != code::success) return found.error;
    const ErrorCode error = remove_found(tree, found.key, depth - 1);
    if (error != code::success) return error;
  }
  return code::success;
}

ErrorCode remove_found(RegistryTree& tree, KeyId key, int depth) {
  if (tree.keys.at(key).protect) return code::access_denied;
  const ErrorCode error = empty_key(tree, key, depth);
  if (error != code::success) return error;
  // A link below may have led to the key.
  if (tree.keys.count(key) == 0) return code::key_deleted;
  if (hive_root(tree, key)) return code::access_denied;
  remove_key(tree, key);
  return code::success;
}

}  // namespace

ErrorCode Registry::remove_tree(RegistryKey key, const wchar_t* subkey) {
  const ports::Lock lock(world_.mutex);
  RegistryTree& tree = world_.state.registry;
  const bool whole = subkey != nullptr && *subkey != 0;
  KeyFound found;
  const ErrorCode error = find(key, whole ? 0 : right::enumerate | right::set_value, subkey, found);
  if (error != code::success) return error;
  if (whole) return remove_found(tree, found.key, deepest);
  const ErrorCode emptied = empty_key(tree, found.key, deepest);
  if (emptied == code::success) tree.keys.at(found.key).values.clear();
  return emptied;
}

ErrorCode Registry::hive_place(RegistryKey key, KeyId& root) {
  OpenKey used;
  const ErrorCode error = use(key, 0, used);
  if (error != code::success) return error;
  if (!privilege_enabled(world_.state, privilege::restore) || !privilege_enabled(world_.state, privilege::backup)) {
    return code::privilege_not_held;
  }
  root = used.key;
  return world_.state.registry.keys.at(root).parent == 0 ? code::success : code::invalid_parameter;
}

ErrorCode Registry::load_hive(RegistryKey key, const wchar_t* name, const wchar_t* file) {
  const ports::Lock lock(world_.mutex);
  KeyId root = 0;
  const ErrorCode error = hive_place(key, root);
  if (error != code::success) return error;
  const std::wstring_view mount = name == nullptr ? L"" : name;
  if (mount.empty() || mount.size() > longest_name || mount.find(L'\\') != std::wstring_view::npos) {
    return code::invalid_parameter;
  }
  return mount_hive(world_.state, root, mount, file == nullptr ? L"" : file);
}

ErrorCode Registry::unload_hive(RegistryKey key, const wchar_t* name) {
  const ports::Lock lock(world_.mutex);
  KeyId root = 0;
  const ErrorCode error = hive_place(key, root);
  if (error != code::success) return error;
  const RegistryTree& tree = world_.state.registry;
  const KeyId hive = machine::subkey(tree, root, name == nullptr ? L"" : name);
  if (hive == 0) return code::file_not_found;
  if (world_.state.hives.count(hive) == 0) return code::invalid_parameter;
  for (const auto& entry : open_) {
    if (within(tree, entry.second.key, hive)) return code::access_denied;
  }
  return unmount_hive(world_.state, hive);
}

}  // namespace machine
