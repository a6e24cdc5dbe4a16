#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ports/registry.h"
#include "platform/ports/system.h"

namespace record {

/// How a thing stands: its kind as in `Change`, and the text that describes it.
struct State {
  std::string kind;
  std::wstring text;
  friend bool operator==(const State&, const State&) = default;
};

/// A registry key by name, so that it can be looked at when no handle of it is left.
struct KeyPlace {
  ports::RegistryKey root = ports::RegistryKey::null;
  std::wstring subkey;
  std::uint32_t view = 0;  // registry_access::view_32, view_64 or 0

  /// With the root's long name in front.
  [[nodiscard]] std::wstring path() const;
};

// Looks at the inner system. Nothing where the thing is not there. Each may change the last error.

/// A file with its attributes and size, a folder, or a link, which is told for itself.
[[nodiscard]] std::optional<State> look_at_path(const ports::System& inner, const std::wstring& path);

/// A digest of what a file holds; nothing where there is no file.
[[nodiscard]] std::optional<State> look_at_content(const ports::System& inner, const std::wstring& path);

/// The key itself, also where it is a link.
[[nodiscard]] std::optional<State> look_at_key(const ports::System& inner, const KeyPlace& place);

/// A value, described by its type and data.
[[nodiscard]] std::optional<State> look_at_value(const ports::System& inner, const KeyPlace& place,
                                                 const std::wstring& name);

/// Names of all values of a key.
[[nodiscard]] std::vector<std::wstring> value_names(const ports::System& inner, const KeyPlace& place);

/// The key and all keys below it, where it is there. A link is named, and so is the key that it leads to with all that
/// is below that; each once.
[[nodiscard]] std::vector<KeyPlace> keys_below(const ports::System& inner, const KeyPlace& place);

/// A task of the scheduler by its full path. Joins COM for the time of the look.
[[nodiscard]] std::optional<State> look_at_task(const ports::System& inner, const std::wstring& path);

/// A driver package by the name that its INF file has in the system's folder, told by its place in the store.
[[nodiscard]] std::optional<State> look_at_driver(const ports::System& inner, const std::wstring& inf);

/// All that lies below a folder, relative to it; links are named and not followed.
[[nodiscard]] std::vector<std::wstring> tree_below(const ports::System& inner, const std::wstring& folder);

}  // namespace record
