#include "platform/record/look.h"

#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "platform/ports/codes.h"
#include "platform/ports/com.h"
#include "platform/ports/driver_store.h"
#include "platform/ports/files.h"
#include "platform/ports/task_scheduler.h"
#include "platform/ports/threads.h"
#include "platform/record/describe.h"
#include "platform/record/paths.h"

namespace record {

namespace {

/// A key opened for reading, itself and not what it links to.
class OpenKey {
 public:
  OpenKey(const ports::System& inner, const KeyPlace& place) : registry_(inner.registry) {
    code_ = registry_.open(place.root, place.subkey.c_str(), ports::registry_option::open_link,
                           ports::registry_access::read | place.view, key_);
  }
  ~OpenKey() {
    if (code_ == ports::code::success) registry_.close(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  [[nodiscard]] ports::ErrorCode code() const { return code_; }
  [[nodiscard]] ports::RegistryKey key() const { return key_; }

 private:
  ports::Registry& registry_;
  ports::RegistryKey key_ = ports::RegistryKey::null;
  ports::ErrorCode code_;
};

bool absent(ports::ErrorCode code) {
  return code == ports::code::file_not_found || code == ports::code::path_not_found || code == ports::code::key_deleted;
}

/// The rows of a folder, or the one row of a file, without "." and "..".
std::vector<ports::FolderRow> rows(const ports::System& inner, const std::wstring& pattern) {
  std::vector<ports::FolderRow> found;
  ports::FolderRow row;
  const ports::Handle search = inner.files.find_first(pattern.c_str(), row);
  if (search == ports::Handle::invalid) return found;
  do {
    if (row.name != L"." && row.name != L"..") found.push_back(row);
  } while (inner.files.find_next(search, row));
  inner.files.find_close(search);
  return found;
}

std::wstring content_digest(const ports::System& inner, const std::wstring& path) {
  const ports::Handle file = inner.files.open(path.c_str(), ports::file_access::generic_read, ports::file_share::all,
                                              ports::Disposition::open_existing, 0);
  if (file == ports::Handle::invalid) return L"unreadable";
  Digest digest;
  std::array<std::uint8_t, 65536> piece;
  std::uint32_t got = 0;
  while (inner.files.read(file, piece, got) && got != 0) digest.add(std::span(piece).first(got));
  inner.waits.close(file);
  return digest.text();
}

std::wstring root_name(ports::RegistryKey root) {
  switch (root) {
    case ports::RegistryKey::classes_root:
      return L"HKEY_CLASSES_ROOT";
    case ports::RegistryKey::current_user:
      return L"HKEY_CURRENT_USER";
    case ports::RegistryKey::local_machine:
      return L"HKEY_LOCAL_MACHINE";
    case ports::RegistryKey::users:
      return L"HKEY_USERS";
    default:
      return L"?";
  }
}

}  // namespace

std::wstring KeyPlace::path() const {
  std::wstring text = plain_path(joined(root_name(root), subkey));
  if (view == ports::registry_access::view_32) text += L" (32-bit view)";
  return text;
}

std::optional<State> look_at_path(const ports::System& inner, const std::wstring& path) {
  const std::uint32_t attributes = inner.files.attributes(path.c_str());
  if (attributes == ports::file_attribute::invalid) {
    if (const ports::ErrorCode code = inner.errors.last(); !absent(code) && code != ports::code::invalid_name) {
      return State{"file", L"not readable, error " + std::to_wstring(code)};
    }
    return std::nullopt;
  }
  const std::wstring words = describe_attributes(attributes);
  if ((attributes & ports::file_attribute::reparse_point) != 0)
    return State{"link", words.empty() ? L"present" : words};
  if ((attributes & ports::file_attribute::directory) != 0) return State{"folder", words.empty() ? L"present" : words};
  const std::vector<ports::FolderRow> row = rows(inner, path);
  const std::wstring size = row.empty() ? L"?" : std::to_wstring(row.front().size);
  return State{"file", (words.empty() ? words : words + L", ") + size + L" bytes"};
}

std::optional<State> look_at_content(const ports::System& inner, const std::wstring& path) {
  const std::optional<State> state = look_at_path(inner, path);
  if (!state || state->kind != "file") return std::nullopt;
  return State{"file", L"digest " + content_digest(inner, path)};
}

std::optional<State> look_at_key(const ports::System& inner, const KeyPlace& place) {
  const OpenKey opened(inner, place);
  if (opened.code() == ports::code::success) return State{"registry-key", L"present"};
  if (absent(opened.code())) return std::nullopt;
  return State{"registry-key", L"not readable, error " + std::to_wstring(opened.code())};
}

std::optional<State> look_at_value(const ports::System& inner, const KeyPlace& place, const std::wstring& name) {
  const OpenKey opened(inner, place);
  ports::ErrorCode code = opened.code();
  ports::RegistryValue value;
  if (code == ports::code::success) code = inner.registry.query(opened.key(), name.c_str(), value);
  if (code == ports::code::success) return State{"registry-value", describe_value(value)};
  if (absent(code)) return std::nullopt;
  return State{"registry-value", L"not readable, error " + std::to_wstring(code)};
}

std::vector<std::wstring> value_names(const ports::System& inner, const KeyPlace& place) {
  std::vector<std::wstring> names;
  const OpenKey opened(inner, place);
  if (opened.code() != ports::code::success) return names;
  std::wstring name;
  for (std::uint32_t at = 0; inner.registry.value_name(opened.key(), at, name) == ports::code::success; ++at) {
    names.push_back(name);
  }
  return names;
}

namespace {

/// Where a link key leads; nothing for another key.
std::optional<KeyPlace> target_of_link(const ports::System& inner, const KeyPlace& place) {
  const OpenKey opened(inner, place);
  ports::RegistryValue value;
  if (opened.code() != ports::code::success ||
      inner.registry.query(opened.key(), L"SymbolicLinkValue", value) != ports::code::success ||
      value.type != ports::RegistryType::link) {
    return std::nullopt;
  }
  std::wstring target;
  for (std::size_t at = 0; at + 1 < value.bytes.size(); at += 2) {
    target += static_cast<wchar_t>(value.bytes[at] | value.bytes[at + 1] << 8);
  }
  const std::pair<const wchar_t*, ports::RegistryKey> roots[] = {
      {L"\\registry\\machine\\", ports::RegistryKey::local_machine},
      {L"\\registry\\user\\", ports::RegistryKey::users}};
  for (const auto& [prefix, root] : roots) {
    if (folded(target).starts_with(prefix)) {
      return KeyPlace{root, target.substr(std::wstring_view(prefix).size()), place.view};
    }
  }
  return std::nullopt;
}

}  // namespace

std::vector<KeyPlace> keys_below(const ports::System& inner, const KeyPlace& place) {
  std::vector<KeyPlace> found;
  std::set<std::wstring> seen;
  std::vector<KeyPlace> waiting{place};
  while (!waiting.empty()) {
    const KeyPlace key = std::move(waiting.back());
    waiting.pop_back();
    const OpenKey opened(inner, key);
    if (opened.code() != ports::code::success || !seen.insert(folded(key.path())).second) continue;
    found.push_back(key);
    if (std::optional<KeyPlace> target = target_of_link(inner, key)) {
      waiting.push_back(std::move(*target));
      continue;
    }
    std::wstring name;
    for (std::uint32_t at = 0; inner.registry.subkey(opened.key(), at, name) == ports::code::success; ++at) {
      waiting.push_back({key.root, joined(key.subkey, name), key.view});
    }
  }
  return found;
}

std::optional<State> look_at_task(const ports::System& inner, const std::wstring& path) {
  const std::size_t end = path.rfind(L'\\');
  const std::wstring parent = end == 0 || end == std::wstring::npos ? L"\\" : path.substr(0, end);
  const std::wstring name = end == std::wstring::npos ? path : path.substr(end + 1);
  const bool entered = ports::succeeded(inner.com.initialize(ports::ComModel::multithreaded));
  ports::TaskService service = ports::TaskService::null;
  ports::TaskFolder folder = ports::TaskFolder::null;
  ports::ScheduledTask task = ports::ScheduledTask::null;
  std::wstring registered;
  ports::Result result = inner.tasks.create_service(service);
  if (ports::succeeded(result)) result = inner.tasks.connect(service);
  if (ports::succeeded(result)) result = inner.tasks.folder(service, parent.c_str(), folder);
  if (ports::succeeded(result)) result = inner.tasks.task(folder, name.c_str(), task);
  if (ports::succeeded(result)) result = inner.tasks.name(task, registered);
  if (task != ports::ScheduledTask::null) inner.tasks.release(task);
  if (folder != ports::TaskFolder::null) inner.tasks.release(folder);
  if (service != ports::TaskService::null) inner.tasks.release(service);
  if (entered) inner.com.uninitialize();
  if (ports::succeeded(result)) return State{"task", registered};
  if (absent(ports::code::of_result(result))) return std::nullopt;
  return State{"task", L"not readable, error " + std::to_wstring(ports::code::of_result(result))};
}

std::optional<State> look_at_driver(const ports::System& inner, const std::wstring& inf) {
  std::uint32_t size = 0;
  std::wstring location(32768, L'\0');
  if (inner.drivers.inf_location(inf.c_str(), location, size)) return State{"driver-package", location.c_str()};
  const ports::ErrorCode code = inner.errors.last();
  if (absent(code) || code == ports::code::not_found) return std::nullopt;
  return State{"driver-package", L"not readable, error " + std::to_wstring(code)};
}

std::vector<std::wstring> tree_below(const ports::System& inner, const std::wstring& folder) {
  std::vector<std::wstring> found;
  std::vector<std::wstring> waiting{L""};
  while (!waiting.empty()) {
    const std::wstring parent = std::move(waiting.back());
    waiting.pop_back();
    for (const ports::FolderRow& row : rows(inner, joined(joined(folder, parent), L"*"))) {
      found.push_back(joined(parent, row.name));
      const std::uint32_t kind =
          row.attributes & (ports::file_attribute::directory | ports::file_attribute::reparse_point);
      if (kind == ports::file_attribute::directory) waiting.push_back(found.back());
    }
  }
  return found;
}

}  // namespace record
