#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/ports/registry.h"
#include "platform/ports/system.h"

namespace scenario {

/// A key below one of the predefined ones.
struct KeyRoot {
  ports::RegistryKey root;
  std::wstring name;  // of the predefined one
  std::wstring subkey;
};

/// Full names of everything below a folder or key, itself included: folders and keys end in a backslash, values follow
/// their key behind a colon. In lower case, since worlds differ in the case of what they had before. Links are named
/// and not entered.
[[nodiscard]] std::set<std::wstring> list_folder(const ports::System& world, const std::wstring& folder);
[[nodiscard]] std::set<std::wstring> list_key(const ports::System& world, const KeyRoot& key);

/// Makes in `to` what `from` has below a folder or key, contents, attributes and values included, but for links.
void copy_folder(const ports::System& from, const ports::System& to, const std::wstring& folder);
void copy_key(const ports::System& from, const ports::System& to, const KeyRoot& key);

/// Copies a single file within or between worlds.
void copy_file(const ports::System& from, const std::wstring& source, const ports::System& to,
               const std::wstring& target);

}  // namespace scenario
