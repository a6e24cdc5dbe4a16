#include "host/deletion/registry_target.h"

#include <algorithm>

#include "installer/utils/base/strings/case_fold.h"

namespace host {

namespace {

using base::strings::equal_ignoring_case;
using ports::RegistryKey;

struct Base {
  std::wstring_view name;
  RegistryKey root;
};
constexpr Base bases[] = {
    {L"HKEY_CLASSES_ROOT", RegistryKey::classes_root},
    {L"HKEY_CURRENT_USER", RegistryKey::current_user},
    {L"HKEY_LOCAL_MACHINE", RegistryKey::local_machine},
    {L"HKEY_USERS", RegistryKey::users},
};

struct Branch {
  RegistryKey root;
  std::wstring_view subkey;
};
// Parents of what products make, which an empty variable at the end of a subkey would leave as the target. Each stands
// here under its plainest path, as `plainest` has it.
constexpr Branch great_branches[] = {
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows NT"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options"},
    {RegistryKey::local_machine, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList"},
    {RegistryKey::local_machine, L"SOFTWARE\\Policies"},
    {RegistryKey::local_machine, L"SYSTEM\\CurrentControlSet"},
    {RegistryKey::local_machine, L"SYSTEM\\CurrentControlSet\\Control"},
    {RegistryKey::local_machine, L"SYSTEM\\CurrentControlSet\\Services"},
    {RegistryKey::current_user, L"Software\\Microsoft"},
    {RegistryKey::current_user, L"Software\\Microsoft\\Windows"},
    {RegistryKey::current_user, L"Software\\Microsoft\\Windows\\CurrentVersion"},
    {RegistryKey::current_user, L"Software\\Microsoft\\Windows\\CurrentVersion\\Run"},
    {RegistryKey::current_user, L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
    {RegistryKey::current_user, L"Software\\Policies"},
    {RegistryKey::classes_root, L"*"},
    {RegistryKey::classes_root, L"AppID"},
    {RegistryKey::classes_root, L"CLSID"},
    {RegistryKey::classes_root, L"Directory"},
    {RegistryKey::classes_root, L"Drive"},
    {RegistryKey::classes_root, L"Folder"},
    {RegistryKey::classes_root, L"Interface"},
    {RegistryKey::classes_root, L"TypeLib"},
};

std::vector<std::wstring> split(std::wstring_view subkey) {
  std::vector<std::wstring> parts;
  std::size_t begin = 0;
  while (true) {
    const std::size_t end = std::min(subkey.find(L'\\', begin), subkey.size());
    parts.emplace_back(subkey.substr(begin, end - begin));
    if (end == subkey.size()) return parts;
    begin = end + 1;
  }
}

std::wstring joined(std::span<const std::wstring> parts) {
  std::wstring text;
  for (const std::wstring& part : parts) {
    if (!text.empty()) text += L'\\';
    text += part;
  }
  return text;
}

bool is_great_branch(RegistryKey root, std::span<const std::wstring> parts) {
  const std::wstring subkey = joined(parts);
  return std::any_of(std::begin(great_branches), std::end(great_branches), [&](const Branch& branch) {
    return branch.root == root && equal_ignoring_case(branch.subkey, subkey);
  });
}

bool is_control_set(std::wstring_view name) {
  constexpr std::wstring_view start = L"ControlSet";
  return name.size() == start.size() + 3 && equal_ignoring_case(name.substr(0, start.size()), start);
}

/// The key by its plainest path: a user's by HKEY_CURRENT_USER, classes by HKEY_CLASSES_ROOT, a numbered control set by
/// the current one's name, and without the mark of the 32-bit view.
RegistryTarget plainest(RegistryTarget target) {
  std::vector<std::wstring>& parts = target.parts;
  const auto drop = [&parts](std::ptrdiff_t count) { parts.erase(parts.begin(), parts.begin() + count); };
  if (target.root == RegistryKey::users) {
    const bool classes = !target.each_user && !is_user_key(parts[0]);
    target.root = classes ? RegistryKey::classes_root : RegistryKey::current_user;
    if (!target.each_user) drop(1);
  }
  parts.erase(std::remove_if(parts.begin(), parts.end(),
                             [](const std::wstring& part) { return equal_ignoring_case(part, L"Wow6432Node"); }),
              parts.end());
  if (target.root == RegistryKey::classes_root || parts.size() < 2) return target;
  if (equal_ignoring_case(parts[0], L"SOFTWARE") && equal_ignoring_case(parts[1], L"Classes")) {
    target.root = RegistryKey::classes_root;
    drop(2);
  } else if (equal_ignoring_case(parts[0], L"SYSTEM") && is_control_set(parts[1])) {
    parts[1] = L"CurrentControlSet";
  }
  return target;
}

}  // namespace

RegistryTarget decide_registry_value(std::wstring_view base, std::wstring_view subkey) {
  const auto* const found =
      std::find_if(std::begin(bases), std::end(bases), [base](const Base& row) { return row.name == base; });
  if (found == std::end(bases)) return {L"the base is not the name of a root", RegistryKey::null, false, {}};

  RegistryTarget target;
  target.root = found->root;
  if (target.root == RegistryKey::users && subkey.starts_with(L"*\\")) {
    target.each_user = true;
    subkey.remove_prefix(2);
  }
  if (subkey.ends_with(L'\\')) subkey.remove_suffix(1);
  if (subkey.empty()) return {L"the subkey is empty", RegistryKey::null, false, {}};
  target.parts = split(subkey);
  for (const std::wstring& part : target.parts) {
    if (part.empty()) return {L"a part of the subkey is empty", RegistryKey::null, false, {}};
  }
  return target;
}

RegistryTarget decide_registry_key(std::wstring_view base, std::wstring_view subkey) {
  RegistryTarget target = decide_registry_value(base, subkey);
  if (target.refusal != nullptr) return target;

  const RegistryTarget plain = plainest(target);
  const bool hive = plain.parts.empty() || (plain.root != RegistryKey::classes_root && plain.parts.size() == 1);
  if (hive || is_great_branch(plain.root, plain.parts)) target.refusal = L"the system needs this key";
  return target;
}

std::wstring full_name(std::wstring_view base, const RegistryTarget& target) {
  std::wstring name(base);
  for (const std::wstring& part : target.parts) name.append(L"\\").append(part);
  return name;
}

bool is_user_key(std::wstring_view name) {
  constexpr std::wstring_view classes = L"_Classes";
  return name.size() < classes.size() || !equal_ignoring_case(name.substr(name.size() - classes.size()), classes);
}

std::uint32_t open_options(RegistryKey root, std::span<const std::wstring> parts, std::size_t position) {
  const bool control_set = root == RegistryKey::local_machine && position == 1 && parts.size() > 2 &&
                           equal_ignoring_case(parts[0], L"SYSTEM") &&
                           equal_ignoring_case(parts[1], L"CurrentControlSet");
  return control_set ? 0 : ports::registry_option::open_link;
}

}  // namespace host
