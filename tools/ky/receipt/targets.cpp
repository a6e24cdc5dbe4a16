#include "tools/ky/receipt/targets.h"

#include <algorithm>
#include <utility>

#include "installer/utils/base/strings/expand.h"
#include "installer/utils/base/strings/utf8.h"

namespace receipt {

namespace {

using base::strings::to_wide;
using host::TargetKind;

constexpr std::wstring_view roots[] = {L"HKEY_CLASSES_ROOT", L"HKEY_CURRENT_USER", L"HKEY_LOCAL_MACHINE",
                                       L"HKEY_USERS"};
constexpr std::wstring_view ifeo_path =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\";

constexpr std::wstring_view verbatim = L"\\\\?\\";

/// A text that leads back to itself is not expanded for ever; no script comes near.
constexpr std::size_t most_replacements = 10'000;
struct Endless {};

/// Reads the attributes of one element at one moment.
class Reading {
 public:
  Reading(const host::CommandSchema& command, const script::PlainElement& element, const Variables& variables,
          const Kept& kept, Names& names)
      : command_(command), element_(element), variables_(variables), kept_(kept), names_(names) {}

  /// The attribute's text as the command would see it. Nothing, and a note, where it cannot be expanded; nothing where
  /// it is absent.
  std::optional<std::wstring> text(const std::string& attribute) {
    const script::PlainAttribute* const found = element_.find(attribute);
    if (found == nullptr) return std::nullopt;
    const host::AttributeSchema* const schema = host::find_attribute(command_, attribute).schema;
    std::wstring value = to_wide(found->value);
    if (schema == nullptr || !schema->expanded) return value;
    if (const auto known = kept_.find(attribute); known != kept_.end()) return known->second;
    const std::wstring reason = expand(value);
    if (!reason.empty()) {
      names_.unnamed.push_back({attribute, to_wide(found->value), reason});
      return std::nullopt;
    }
    if (schema->keeps_expansion) names_.expansions[attribute] = value;
    return value;
  }

  void add(TargetKind kind, std::wstring path, std::wstring value = {}) {
    names_.targets.push_back({kind, std::move(path), std::move(value), of_registry(kind) && variables_.x64});
  }
  void refuse(const std::string& attribute, const std::wstring& reason) {
    names_.unnamed.push_back({attribute, to_wide(element_.find(attribute)->value), reason});
  }

  /// The attribute's name, or the names of the family that the command reads.
  [[nodiscard]] std::vector<std::pair<std::string, std::int32_t>> family(std::string_view name) const {
    std::vector<std::pair<std::string, std::int32_t>> found;
    for (const script::PlainAttribute& attribute : element_.attributes) {
      const host::FoundAttribute known = host::find_attribute(command_, attribute.name);
      if (known.schema == nullptr || known.schema->name != name) continue;
      const auto most = static_cast<std::int32_t>((element_.attributes.size() - 1) / known.schema->attributes_each);
      if (!known.schema->numbered || known.number <= most) found.emplace_back(attribute.name, known.number);
    }
    return found;
  }

  [[nodiscard]] const Variables& variables() const { return variables_; }

 private:
  static bool of_registry(TargetKind kind) {
    return kind == TargetKind::registry_key || kind == TargetKind::registry_value;
  }

  /// Empty, or why not.
  [[nodiscard]] std::wstring expand(std::wstring& text) const {
    std::wstring missing;
    std::wstring value;
    std::size_t replacements = 0;
    const auto value_of = [&](std::wstring_view name) -> const wchar_t* {
      std::optional<std::wstring> found = variables_.text(name);
      if (!found) {
        missing = name;
        return nullptr;
      }
      value = std::move(*found);
      return value.c_str();
    };
    const auto step = [&replacements] {
      if (++replacements > most_replacements) throw Endless{};
    };
    try {
      if (base::strings::expand_in_place(text, value_of, step)) return {};
      return L"[" + missing + L"] is never set";
    } catch (const Endless&) {
      return L"it leads back to itself";
    }
  }

  const host::CommandSchema& command_;
  const script::PlainElement& element_;
  const Variables& variables_;
  const Kept& kept_;
  Names& names_;
};

void read_path(const host::TargetSchema& target, Reading& reading) {
  const std::string attribute(target.name);
  std::optional<std::wstring> path = reading.text(attribute);
  if (!path) return;
  if (path->empty()) {
    // These two read an empty name as nothing to do.
    const bool may_be_empty = target.kind == TargetKind::task || target.kind == TargetKind::driver_package;
    if (!may_be_empty) reading.refuse(attribute, L"it is empty");
    return;
  }
  const bool of_files = target.kind == TargetKind::file || target.kind == TargetKind::folder;
  if (of_files && path->find_first_of(L"*?<>|\"", path->starts_with(verbatim) ? verbatim.size() : 0) != path->npos) {
    return reading.refuse(attribute, L"no file or folder has such a name");
  }
  reading.add(target.kind, std::move(*path));
}

void read_key(const host::TargetSchema& target, Reading& reading) {
  const bool value = target.kind == TargetKind::registry_value;
  const std::optional<std::wstring> root = reading.text(std::string(target.root));
  std::optional<std::wstring> subkey = reading.text(std::string(value ? target.place : target.name));
  const std::optional<std::wstring> name = value ? reading.text(std::string(target.name)) : std::wstring();
  if (!root || !subkey || !name) return;
  if (std::find(std::begin(roots), std::end(roots), *root) == std::end(roots)) {
    reading.refuse(std::string(target.root), L"it is no root of the registry");
    return;
  }
  while (subkey->ends_with(L'\\')) subkey->pop_back();
  reading.add(target.kind, *root + L"\\" + *subkey, *name);
}

void read_executables(const host::TargetSchema& target, Reading& reading) {
  for (const auto& [attribute, number] : reading.family(target.name)) {
    std::optional<std::wstring> folder = reading.text(std::string(target.place) + std::to_string(number));
    const std::optional<std::wstring> name = reading.text(attribute);
    if (!folder || !name || name->empty()) continue;
    if (!folder->empty() && !folder->ends_with(L'\\')) *folder += L'\\';
    reading.add(target.kind, *folder + *name);
  }
}

/// The list is read as the command does: an empty item counts but at the end.
void read_ifeo_list(const host::TargetSchema& target, Reading& reading, Names& names) {
  const std::wstring key = to_wide(target.name.substr(target.name.find('_') + 1));
  const std::optional<std::wstring> list = reading.variables().text(key);
  if (!list) {
    names.unnamed.push_back({std::string(target.name), L"", L"[" + key + L"] is never set"});
    return;
  }
  for (std::size_t at = 0; at < list->size();) {
    const std::size_t end = std::min(list->find(L';', at), list->size());
    std::wstring path(ifeo_path);
    reading.add(TargetKind::registry_key, path.append(*list, at, end - at).append(L".exe"));
    names.targets.back().view_64 = false;
    at = end + 1;
  }
}

}  // namespace

Names names_of(const host::CommandSchema& command, const script::PlainElement& element, const Variables& variables,
               const Kept& kept) {
  Names names;
  Reading reading(command, element, variables, kept, names);
  for (const host::TargetSchema& target : command.targets) {
    switch (target.kind) {
      case TargetKind::registry_key:
      case TargetKind::registry_value:
        read_key(target, reading);
        break;
      case TargetKind::process_file:
        read_executables(target, reading);
        break;
      case TargetKind::ifeo_keys:
        read_ifeo_list(target, reading, names);
        break;
      case TargetKind::file:
      case TargetKind::folder:
      case TargetKind::task:
      case TargetKind::driver_package:
      case TargetKind::process_name:
        read_path(target, reading);
        break;
    }
  }
  return names;
}

std::optional<RootedKey> split_key(std::wstring_view path) {
  for (const std::wstring_view root : roots) {
    if (!path.starts_with(root) || (path.size() > root.size() && path[root.size()] != L'\\')) continue;
    const std::wstring_view rest = path.substr(root.size());
    return RootedKey{std::wstring(root), std::wstring(rest.substr(rest.empty() ? 0 : 1))};
  }
  return std::nullopt;
}

}  // namespace receipt
