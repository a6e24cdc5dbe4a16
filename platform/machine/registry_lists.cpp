#include <algorithm>
#include <iterator>

#include "platform/machine/registry.h"
#include "platform/ports/codes.h"

// What is below a key, by position.
namespace machine {

namespace code = ports::code;
namespace right = ports::registry_access;
using ports::ErrorCode;
using ports::RegistryKey;

// Walks go up by one mostly. Counting from the beginning each time would make a walk over many keys quadratic.
const std::wstring* Registry::subkey_at(RegistryKey handle, KeyId key, std::uint32_t position) {
  const KeyNode& node = world_.state.registry.keys.at(key);
  if (position >= node.subkeys.size()) return nullptr;
  Walk& walk = walks_[handle];
  const bool goes_on = walk.key == key && walk.turns == node.turns && position == walk.position + 1;
  const auto found = goes_on ? node.subkeys.upper_bound(std::wstring_view(walk.name))
                             : std::next(node.subkeys.begin(), static_cast<std::ptrdiff_t>(position));
  walk = {key, node.turns, position, found->first};
  return &found->first;
}

ErrorCode Registry::subkey(RegistryKey key, std::uint32_t position, std::wstring& name) {
  return subkey_within(key, position, UINT32_MAX, name);
}

ErrorCode Registry::subkey_within(RegistryKey key, std::uint32_t position, std::uint32_t room, std::wstring& name) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::enumerate, used);
  if (error != code::success) return error;
  const std::wstring* found = subkey_at(key, used.key, position);
  if (found == nullptr) return code::no_more_items;
  if (found->size() >= room) return code::more_data;
  name = *found;
  return code::success;
}

ErrorCode Registry::information(RegistryKey key, ports::KeyInformation& out) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::query_value, used);
  if (error != code::success) return error;
  const KeyNode& node = world_.state.registry.keys.at(used.key);
  out = {static_cast<std::uint32_t>(node.subkeys.size()), 0, static_cast<std::uint32_t>(node.values.size())};
  for (const auto& entry : node.subkeys) {
    out.longest_subkey = std::max(out.longest_subkey, static_cast<std::uint32_t>(entry.first.size()));
  }
  return code::success;
}

ErrorCode Registry::value_name(RegistryKey key, std::uint32_t position, std::wstring& name) {
  const ports::Lock lock(world_.mutex);
  OpenKey used;
  const ErrorCode error = use(key, right::query_value, used);
  if (error != code::success) return error;
  const auto& values = world_.state.registry.keys.at(used.key).values;
  if (position >= values.size()) return code::no_more_items;
  name = std::next(values.begin(), static_cast<std::ptrdiff_t>(position))->first;
  return code::success;
}

}  // namespace machine
