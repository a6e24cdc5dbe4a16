#include "platform/machine/registry.h"

#include <utility>

#include "platform/machine/registry_views.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;
namespace right = ports::registry_access;
namespace option = ports::registry_option;
using ports::ErrorCode;
using ports::RegistryKey;

namespace {

constexpr std::uint32_t all_rights = 0xF003F;
constexpr std::uint32_t whatever_is_allowed = 0x12000000;  // MAXIMUM_ALLOWED, GENERIC_ALL
constexpr std::uint32_t changing = right::set_value | right::create_subkey | right::create_link | right::erase;

[[nodiscard]] KeyId predefined(const State& state, RegistryKey key) {
  const RegistryTree& tree = state.registry;
  switch (key) {
    case RegistryKey::local_machine:
      return tree.local_machine;
    case RegistryKey::users:
      return tree.users;
    case RegistryKey::current_user:
      return find_key(tree, tree.users, {state.environment.user}, true).key;
    case RegistryKey::classes_root:
      return find_key(tree, tree.local_machine, {L"SOFTWARE", L"Classes"}, true).key;
    case RegistryKey::null:
      break;
  }
  return 0;
}

[[nodiscard]] bool is_predefined(RegistryKey key) {
  return key == RegistryKey::local_machine || key == RegistryKey::users || key == RegistryKey::current_user ||
         key == RegistryKey::classes_root;
}

// The way to a subkey, in the view that `access` asks for, else in that of the process. A path may end in a backslash,
// but not begin with one.
[[nodiscard]] ErrorCode way_of(const State& state, KeyId from, const wchar_t* subkey, std::uint32_t access,
                               RegistryWay& way) {
  constexpr std::uint32_t both_views = right::view_32 | right::view_64;
  if ((access & both_views) == both_views) return code::invalid_parameter;
  const std::wstring_view path = subkey == nullptr ? L"" : subkey;
  if (!path.empty() && path.front() == L'\\') return code::bad_path_name;
  way = {from, split_path(path)};
  for (const std::wstring& part : way.parts) {
    if (part.size() > longest_name) return code::invalid_parameter;
  }
  const bool own_view_32 = state.environment.wow64 && (access & right::view_64) == 0;
  if (own_view_32 || (access & right::view_32) != 0) way = in_view_32(state.registry, std::move(way));
  return code::success;
}

}  // namespace

ErrorCode Registry::use(RegistryKey key, std::uint32_t wanted, OpenKey& out) {
  if (is_predefined(key)) {
    out = {predefined(world_.state, key), all_rights};
    return out.key == 0 ? code::file_not_found : code::success;
  }
  const auto found = open_.find(key);
  if (found == open_.end()) return code::invalid_handle;
  if (world_.state.registry.keys.count(found->second.key) == 0) return code::key_deleted;
  out = found->second;
  return (out.access & wanted) == wanted ? code::success : code::access_denied;
}

ErrorCode Registry::grant(KeyId key, std::uint32_t access, RegistryKey& out) {
  const bool protect = world_.state.registry.keys.at(key).protect;
  if (protect && (access & changing) != 0) return code::access_denied;
  std::uint32_t rights = access;
  if ((access & whatever_is_allowed) != 0) rights |= protect ? all_rights & ~changing : all_rights;
  last_ += 4;
  out = static_cast<RegistryKey>(last_);
  open_.emplace(out, OpenKey{key, rights});
  return code::success;
}

ErrorCode Registry::find(RegistryKey from, std::uint32_t wanted, const wchar_t* subkey, KeyFound& out) {
  OpenKey start;
  RegistryWay way;
  ErrorCode error = use(from, wanted, start);
  if (error == code::success) error = way_of(world_.state, start.key, subkey, 0, way);
  if (error != code::success) return error;
  out = find_key(world_.state.registry, way.from, way.parts, true);
  return out.error;
}

ErrorCode Registry::open(RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                         RegistryKey& out) {
  const ports::Lock lock(world_.mutex);
  OpenKey from;
  RegistryWay way;
  ErrorCode error = use(parent, 0, from);
  if (error == code::success) error = way_of(world_.state, from.key, subkey, access, way);
  if (error != code::success) return error;
  const bool follow = (options & option::open_link) == 0;
  const KeyFound found = find_key(world_.state.registry, way.from, way.parts, follow);
  return found.error == code::success ? grant(found.key, access, out) : found.error;
}

ErrorCode Registry::create(RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                           RegistryKey& out, bool& created) {
  const ports::Lock lock(world_.mutex);
  OpenKey from;
  RegistryWay way;
  ErrorCode error = use(parent, 0, from);
  if (error == code::success) error = way_of(world_.state, from.key, subkey, access, way);
  if (error != code::success) return error;
  RegistryTree& tree = world_.state.registry;
  const bool make_link = (options & option::create_link) != 0;
  const KeyFound found = find_key(tree, way.from, way.parts, !make_link && (options & option::open_link) == 0);
  created = false;
  if (found.error == code::success) return make_link ? code::already_exists : grant(found.key, access, out);
  if (found.parent == 0) return found.error;
  const KeyNode& above = tree.keys.at(found.parent);
  const bool make_volatile = (options & option::is_volatile) != 0;
  // Right below a root there are hives alone.
  if (above.parent == 0) return code::invalid_parameter;
  if (above.protect) return code::access_denied;
  if (above.is_volatile && !make_volatile) return code::child_must_be_volatile;
  KeyId key = found.parent;
  for (const std::wstring& name : found.missing) {
    key = add_key(tree, key, name);
    tree.keys.at(key).is_volatile = make_volatile;
  }
  tree.keys.at(key).link = make_link;
  created = true;
  return grant(key, access, out);
}

ErrorCode Registry::close(RegistryKey key) {
  const ports::Lock lock(world_.mutex);
  if (is_predefined(key)) return code::success;
  walks_.erase(key);
  return open_.erase(key) != 0 ? code::success : code::invalid_handle;
}

ErrorCode Registry::query(RegistryKey key, const wchar_t* name, ports::RegistryValue& out) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::query_value, used);
  if (error != code::success) return error;
  const auto& values = world_.state.registry.keys.at(used.key).values;
  const auto found = values.find(std::wstring_view(name == nullptr ? L"" : name));
  if (found == values.end()) return code::file_not_found;
  out = found->second;
  return code::success;
}

ErrorCode Registry::set(RegistryKey key, const wchar_t* name, const ports::RegistryValue& value) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::set_value, used);
  if (error != code::success) return error;
  // A link has the one value that says where it leads.
  KeyNode& node = world_.state.registry.keys.at(used.key);
  const std::wstring_view what = name == nullptr ? L"" : name;
  if (node.link && !same_name(what, link_value_name)) return code::access_denied;
  node.values.insert_or_assign(std::wstring(what), value);
  return code::success;
}

ErrorCode Registry::remove_value(RegistryKey key, const wchar_t* name) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::set_value, used);
  if (error != code::success) return error;
  auto& values = world_.state.registry.keys.at(used.key).values;
  const auto found = values.find(std::wstring_view(name == nullptr ? L"" : name));
  if (found == values.end()) return code::file_not_found;
  values.erase(found);
  return code::success;
}

ErrorCode Registry::remove(RegistryKey key) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::erase, used);
  if (error != code::success) return error;
  RegistryTree& tree = world_.state.registry;
  if (hive_root(tree, used.key) || !tree.keys.at(used.key).subkeys.empty()) return code::access_denied;
  remove_key(tree, used.key);
  return code::success;
}

std::size_t Registry::open_keys() {
  const ports::Lock lock(world_.mutex);
  return open_.size();
}

}  // namespace machine
