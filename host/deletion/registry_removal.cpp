#include "host/deletion/registry_removal.h"

#include "installer/desktop/commands/base/trace.h"
#include "platform/ports/codes.h"

namespace host {

namespace {

namespace access = ports::registry_access;
using ports::ErrorCode;
using ports::RegistryKey;

bool is_absent(ErrorCode code) {
  return code == ports::code::file_not_found || code == ports::code::key_deleted;
}

/// Absent is as good as gone.
ErrorCode unless_absent(ErrorCode code) {
  return is_absent(code) ? ports::code::success : code;
}

void keep_first(ErrorCode& first, ErrorCode code) {
  if (first == ports::code::success) first = code;
}

}  // namespace

template <class Act>
ErrorCode RegistryRemoval::for_each_place(const RegistryTarget& target, Act&& act) {
  if (!target.each_user) return act(target.parts);
  std::vector<std::wstring> users;
  ErrorCode first = names_below(RegistryKey::users, users);
  for (const std::wstring& user : users) {
    if (!is_user_key(user)) continue;
    OpenKey key(registry_);
    bool link = false;
    // One user's key may be a link to another's, which has its own turn.
    if (open(RegistryKey::users, {&user, 1}, access::read, key, link) == ports::code::success && link) continue;
    std::vector<std::wstring> parts{user};
    parts.insert(parts.end(), target.parts.begin(), target.parts.end());
    const ErrorCode code = act(parts);
    if (code != ports::code::success) ky::Trace(L"[Registry] below user '%s': error %u\n", user.c_str(), code);
    keep_first(first, code);
  }
  return first;
}

ErrorCode RegistryRemoval::remove_key(const RegistryTarget& target, bool recursive) {
  return for_each_place(target, [&](const std::vector<std::wstring>& parts) {
    OpenKey key(registry_);
    bool link = false;
    const ErrorCode code = open(target.root, parts, access::read | access::erase, key, link);
    return unless_absent(code != ports::code::success ? code : remove_open(key.get(), link, recursive));
  });
}

ErrorCode RegistryRemoval::remove_value(const RegistryTarget& target, const std::wstring& name) {
  return for_each_place(target, [&](const std::vector<std::wstring>& parts) {
    OpenKey key(registry_);
    bool link = false;
    const ErrorCode code = open(target.root, parts, access::read | access::set_value, key, link);
    if (code != ports::code::success) return unless_absent(code);
    // Of a link's own values there is one, which is where it points.
    if (link) return ports::code::stopped_on_symlink;
    return unless_absent(registry_.remove_value(key.get(), name.c_str()));
  });
}

ErrorCode RegistryRemoval::open(RegistryKey root, std::span<const std::wstring> parts, std::uint32_t last_access,
                                OpenKey& out, bool& link) {
  RegistryKey parent = root;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const bool last = i + 1 == parts.size();
    OpenKey key(registry_);
    const ErrorCode code =
        open_part(parent, parts[i], open_options(root, parts, i), last ? last_access : access::read, key, link);
    if (code != ports::code::success) return code;
    if (link && !last) return ports::code::stopped_on_symlink;
    out = std::move(key);
    parent = out.get();
  }
  return ports::code::success;
}

ErrorCode RegistryRemoval::open_part(RegistryKey parent, const std::wstring& name, std::uint32_t options,
                                     std::uint32_t wanted, OpenKey& out, bool& link) {
  const ErrorCode code = registry_.open(parent, name.c_str(), options, wanted | view_, out.receive());
  return code == ports::code::success ? is_link(out.get(), link) : code;
}

ErrorCode RegistryRemoval::is_link(RegistryKey key, bool& link) {
  ports::RegistryValue value;
  const ErrorCode code = registry_.query(key, L"SymbolicLinkValue", value);
  link = code == ports::code::success && value.type == ports::RegistryType::link;
  return code == ports::code::file_not_found ? ports::code::success : code;
}

ErrorCode RegistryRemoval::names_below(RegistryKey key, std::vector<std::wstring>& names) {
  std::wstring name;
  ErrorCode code = ports::code::success;
  for (std::uint32_t i = 0; (code = registry_.subkey(key, i, name)) == ports::code::success; ++i) names.push_back(name);
  return code == ports::code::no_more_items ? ports::code::success : code;
}

ErrorCode RegistryRemoval::remove_open(RegistryKey key, bool link, bool recursive) {
  if (!link) {
    if (recursive) {
      const ErrorCode code = remove_below(key);
      if (code != ports::code::success) return code;
    } else {
      std::wstring name;
      if (registry_.subkey(key, 0, name) == ports::code::success) return ports::code::key_has_children;
    }
  }
  return registry_.remove(key);
}

ErrorCode RegistryRemoval::remove_below(RegistryKey key) {
  std::vector<std::wstring> names;
  ErrorCode first = names_below(key, names);
  for (const std::wstring& name : names) {
    OpenKey child(registry_);
    bool link = false;
    ErrorCode code = open_part(key, name, ports::registry_option::open_link, access::read | access::erase, child, link);
    if (code == ports::code::success) code = remove_open(child.get(), link, true);
    code = unless_absent(code);
    if (code != ports::code::success) ky::Trace(L"[Registry] subkey '%s' stays. Error %u\n", name.c_str(), code);
    keep_first(first, code);
  }
  return first;
}

}  // namespace host
