#include "platform/machine/registry_tree.h"

#include <cstddef>
#include <utility>

#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

namespace {
constexpr int most_links = 32;
constexpr std::wstring_view native_machine = L"\\Registry\\Machine";
constexpr std::wstring_view native_users = L"\\Registry\\User";
}  // namespace

RegistryTree::RegistryTree() {
  local_machine = add_key(*this, 0, local_machine_name);
  users = add_key(*this, 0, users_name);
}

KeyId subkey(const RegistryTree& tree, KeyId parent, std::wstring_view name) {
  const auto& subkeys = tree.keys.at(parent).subkeys;
  const auto found = subkeys.find(name);
  return found == subkeys.end() ? 0 : found->second;
}

KeyId add_key(RegistryTree& tree, KeyId parent, std::wstring_view name) {
  const KeyId id = ++tree.last_key;
  KeyNode& node = tree.keys[id];
  node.parent = parent;
  node.name = name;
  if (parent == 0) return id;
  KeyNode& above = tree.keys.at(parent);
  above.subkeys.emplace(name, id);
  ++above.turns;
  return id;
}

void remove_key(RegistryTree& tree, KeyId key) {
  const KeyNode& node = tree.keys.at(key);
  KeyNode& above = tree.keys.at(node.parent);
  above.subkeys.erase(node.name);
  ++above.turns;
  tree.keys.erase(key);
}

KeyId make_keys_below(RegistryTree& tree, KeyId from, const std::vector<std::wstring>& parts) {
  KeyId key = from;
  for (const std::wstring& part : parts) {
    const KeyId next = subkey(tree, key, part);
    key = next != 0 ? next : add_key(tree, key, part);
  }
  return key;
}

KeyId make_keys(RegistryTree& tree, std::wstring_view path) {
  std::vector<std::wstring> parts = split_path(path);
  if (parts.empty()) return 0;
  KeyId root = 0;
  if (same_name(parts.front(), local_machine_name)) root = tree.local_machine;
  if (same_name(parts.front(), users_name)) root = tree.users;
  parts.erase(parts.begin());
  return root == 0 ? 0 : make_keys_below(tree, root, parts);
}

std::wstring key_path(const RegistryTree& tree, KeyId key) {
  const KeyNode& node = tree.keys.at(key);
  return node.parent == 0 ? node.name : key_path(tree, node.parent) + L"\\" + node.name;
}

bool hive_root(const RegistryTree& tree, KeyId key) {
  const KeyId parent = tree.keys.at(key).parent;
  return parent == 0 || parent == tree.local_machine || parent == tree.users;
}

bool within(const RegistryTree& tree, KeyId key, KeyId above) {
  auto at = tree.keys.find(key);
  while (at != tree.keys.end() && at->first != above) at = tree.keys.find(at->second.parent);
  return at != tree.keys.end();
}

namespace {

// Where a link leads: a start and the parts from there. No start for a target that is none of ours.
struct Target {
  KeyId from = 0;
  std::vector<std::wstring> parts;
};

[[nodiscard]] Target target_of(const RegistryTree& tree, const KeyNode& link) {
  const auto value = link.values.find(link_value_name);
  if (value == link.values.end()) return {};
  const std::wstring path = text_units(value->second.bytes);
  const auto below = [&path](std::wstring_view root) {
    return name_starts_with(path, root) && (path.size() == root.size() || path[root.size()] == L'\\');
  };
  if (below(native_machine)) return {tree.local_machine, split_path(path.substr(native_machine.size()))};
  if (below(native_users)) return {tree.users, split_path(path.substr(native_users.size()))};
  return {};
}

[[nodiscard]] KeyFound walk(const RegistryTree& tree, KeyId from, const std::vector<std::wstring>& parts,
                            bool follow_last, int links) {
  KeyId key = from;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto rest = parts.begin() + static_cast<std::ptrdiff_t>(i);
    const KeyId next = subkey(tree, key, parts[i]);
    if (next == 0) return {code::file_not_found, 0, key, {rest, parts.end()}};
    const KeyNode& node = tree.keys.at(next);
    if (node.link && (follow_last || i + 1 < parts.size())) {
      if (links == 0) return {code::filename_too_long, 0, 0, {}};
      Target target = target_of(tree, node);
      if (target.from == 0) return {code::file_not_found, 0, 0, {}};
      target.parts.insert(target.parts.end(), rest + 1, parts.end());
      return walk(tree, target.from, target.parts, follow_last, links - 1);
    }
    key = next;
  }
  return {code::success, key, tree.keys.at(key).parent, {}};
}

}  // namespace

KeyFound find_key(const RegistryTree& tree, KeyId from, const std::vector<std::wstring>& parts, bool follow_last) {
  return walk(tree, from, parts, follow_last, most_links);
}

std::vector<std::uint8_t> text_bytes(std::wstring_view text, bool terminated) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() * 2 + 2);
  for (const wchar_t unit : text) {
    const auto value = static_cast<std::uint32_t>(unit);
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
  }
  if (terminated) bytes.insert(bytes.end(), 2, 0);
  return bytes;
}

std::wstring text_units(const std::vector<std::uint8_t>& bytes) {
  std::wstring text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text.push_back(static_cast<wchar_t>(bytes[i] | (bytes[i + 1] << 8)));
  }
  return text;
}

}  // namespace machine
