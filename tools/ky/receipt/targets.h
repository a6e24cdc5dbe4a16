#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/command_schema.h"
#include "tools/ky/script/plain_script.h"

namespace receipt {

/// One thing that a deleting or closing command names, its variables expanded.
struct Target {
  host::TargetKind kind = host::TargetKind::file;
  /// A path; a key with its root in front, "*" for each user's below HKEY_USERS; a task's, package's or process's name.
  std::wstring path;
  std::wstring value{};  // of a registry_value; empty for the key's default value
  bool view_64 = false;  // of the registry, whatever the process's own view is
  friend bool operator==(const Target&, const Target&) = default;
};

/// What an attribute says in the script, where that names nothing.
struct Unnamed {
  std::string attribute;
  std::wstring text;
  std::wstring reason;
  friend bool operator==(const Unnamed&, const Unnamed&) = default;
};

/// The script's variables at one moment.
struct Variables {
  /// The text under a name without prefix; nothing for one that is not set.
  std::function<std::optional<std::wstring>(std::wstring_view name)> text;
  bool x64 = false;  // int_x64 is not 0
};

/// What expansions a command keeps, by attribute.
using Kept = std::map<std::string, std::wstring>;

struct Names {
  std::vector<Target> targets;
  std::vector<Unnamed> unnamed;
  Kept expansions;  // of attributes whose expansion the command keeps once it has run
};

/// What an element names at a moment. `kept` stands for attributes whose expansion the command has kept from a run
/// before. An attribute that is absent, or one of those that may be empty and is, names nothing and is not told.
[[nodiscard]] Names names_of(const host::CommandSchema& command, const script::PlainElement& element,
                             const Variables& variables, const Kept& kept);

/// One of the four names, and the rest of a key's path behind it; nothing where the path begins with no root.
struct RootedKey {
  std::wstring root;
  std::wstring subkey;
};
[[nodiscard]] std::optional<RootedKey> split_key(std::wstring_view path);

}  // namespace receipt
