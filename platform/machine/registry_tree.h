#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/machine/names.h"
#include "platform/ports/registry.h"

namespace machine {

/// Names a key for as long as it is there. 0 is none.
using KeyId = std::uint64_t;

struct KeyNode {
  KeyId parent = 0;
  std::wstring name;
  std::map<std::wstring, KeyId, NameLess> subkeys;
  std::map<std::wstring, ports::RegistryValue, NameLess> values;
  bool is_volatile = false;
  bool link = false;     // leads to what its value SymbolicLinkValue names
  bool protect = false;  // only reading is allowed
  std::uint64_t turns =
      0;  // how often a subkey came or went; a walk by position goes on from there while it is the same
};

inline constexpr std::wstring_view local_machine_name = L"HKEY_LOCAL_MACHINE";
inline constexpr std::wstring_view users_name = L"HKEY_USERS";
inline constexpr std::size_t longest_name = 255;
inline constexpr std::wstring_view link_value_name = L"SymbolicLinkValue";

/// All keys, under the two roots that the others are views of.
struct RegistryTree {
  RegistryTree();

  KeyId local_machine = 0;
  KeyId users = 0;
  std::unordered_map<KeyId, KeyNode> keys;
  KeyId last_key = 0;
};

[[nodiscard]] KeyId subkey(const RegistryTree& tree, KeyId parent, std::wstring_view name);
KeyId add_key(RegistryTree& tree, KeyId parent, std::wstring_view name);
/// Takes a key without subkeys away.
void remove_key(RegistryTree& tree, KeyId key);
/// The key with all that is missing on the way; links are not followed. 0 where the path starts with no root's name.
KeyId make_keys(RegistryTree& tree, std::wstring_view path);
/// The same below a key.
KeyId make_keys_below(RegistryTree& tree, KeyId from, const std::vector<std::wstring>& parts);
/// The path with the root's name.
[[nodiscard]] std::wstring key_path(const RegistryTree& tree, KeyId key);
/// A root, or a key right below one, which is a hive's. They cannot be deleted.
[[nodiscard]] bool hive_root(const RegistryTree& tree, KeyId key);
/// True when `key` is `above` or lies below it; not for one that went.
[[nodiscard]] bool within(const RegistryTree& tree, KeyId key, KeyId above);

/// What a way down from a key leads to.
struct KeyFound {
  ports::ErrorCode error = 0;  // success; file_not_found; filename_too_long (links without end)
  KeyId key = 0;
  KeyId parent = 0;  // the last key that is there
  std::vector<std::wstring> missing;
};
/// Follows links on the way, and one at the end where `follow_last`.
[[nodiscard]] KeyFound find_key(const RegistryTree& tree, KeyId from, const std::vector<std::wstring>& parts,
                                bool follow_last);

/// The bytes of text values as the registry keeps them: units in little-endian, with or without terminator.
[[nodiscard]] std::vector<std::uint8_t> text_bytes(std::wstring_view text, bool terminated = true);
/// All units of such bytes, terminators included; an odd byte at the end is left out.
[[nodiscard]] std::wstring text_units(const std::vector<std::uint8_t>& bytes);

}  // namespace machine
