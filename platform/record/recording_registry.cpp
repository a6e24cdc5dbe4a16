#include "platform/record/recording_registry.h"

#include <algorithm>

#include "platform/ports/codes.h"
#include "platform/record/paths.h"

namespace record {

namespace {

constexpr std::uint32_t view_bits = ports::registry_access::view_32 | ports::registry_access::view_64;

/// The key and all keys on its way, the nearest to the root first.
std::vector<KeyPlace> way_to(const KeyPlace& place) {
  std::vector<KeyPlace> way;
  for (std::size_t end = 0; end < place.subkey.size();) {
    end = std::min(place.subkey.find(L'\\', end + 1), place.subkey.size());
    way.push_back({place.root, place.subkey.substr(0, end), place.view});
  }
  return way;
}

}  // namespace

std::optional<KeyPlace> RecordingRegistry::below(ports::RegistryKey parent, const wchar_t* subkey,
                                                 std::uint32_t access) const {
  std::optional<KeyPlace> place = ledger_.placed(parent);
  if (!place) return place;
  if (subkey != nullptr) place->subkey = joined(place->subkey, subkey);
  while (!place->subkey.empty() && place->subkey.back() == L'\\') place->subkey.pop_back();
  if ((access & view_bits) != 0) place->view = access & view_bits;
  return place;
}

void RecordingRegistry::watch_tree(const KeyPlace& place) {
  for (const KeyPlace& key : keys_below(system_, place)) {
    for (const std::wstring& name : value_names(system_, key)) ledger_.watch_value(key, name);
    ledger_.watch_key(key);
  }
}

void RecordingRegistry::note_key_deletion(const KeyPlace& place, ports::ErrorCode code) {
  ledger_.add_deletion(Ledger::Subject::key, "registry-key", place.path(), code,
                       [this, place] { return look_at_key(system_, place); });
}

ports::ErrorCode RecordingRegistry::open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                         std::uint32_t access, ports::RegistryKey& out) {
  const ports::ErrorCode code = inner_.open(parent, subkey, options, access, out);
  const std::optional<KeyPlace> place = below(parent, subkey, access);
  if (!place) return code;
  if (code == ports::code::success) {
    ledger_.place(out, *place);
  } else if ((access & ports::registry_access::erase) != 0) {
    note_key_deletion(*place, code);
  }
  return code;
}

ports::ErrorCode RecordingRegistry::create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                           std::uint32_t access, ports::RegistryKey& out, bool& created) {
  const std::optional<KeyPlace> place = below(parent, subkey, access);
  if (place) {
    const KeptError kept(errors_);
    for (const KeyPlace& step : way_to(*place)) ledger_.watch_key(step);
  }
  const ports::ErrorCode code = inner_.create(parent, subkey, options, access, out, created);
  if (code == ports::code::success && place) ledger_.place(out, *place);
  return code;
}

ports::ErrorCode RecordingRegistry::close(ports::RegistryKey key) {
  // Before the close: afterwards the number may already mean another thread's new key.
  const std::optional<KeyPlace> place = ledger_.placed(key);
  ledger_.forget(key);
  const ports::ErrorCode code = inner_.close(key);
  if (code != ports::code::success && place) ledger_.place(key, *place);
  return code;
}

ports::ErrorCode RecordingRegistry::set(ports::RegistryKey key, const wchar_t* name,
                                        const ports::RegistryValue& value) {
  if (const auto place = ledger_.placed(key)) {
    const KeptError kept(errors_);
    ledger_.watch_value(*place, name == nullptr ? L"" : name);
  }
  return inner_.set(key, name, value);
}

ports::ErrorCode RecordingRegistry::remove_value(ports::RegistryKey key, const wchar_t* name) {
  const std::optional<KeyPlace> place = ledger_.placed(key);
  if (!place) return inner_.remove_value(key, name);
  const std::wstring value = name == nullptr ? L"" : name;
  {
    const KeptError kept(errors_);
    ledger_.watch_value(*place, value);
  }
  const ports::ErrorCode code = inner_.remove_value(key, name);
  ledger_.add_deletion(Ledger::Subject::value, "registry-value", value_path(*place, value), code,
                       [this, place, value] { return look_at_value(system_, *place, value); });
  return code;
}

ports::ErrorCode RecordingRegistry::remove(ports::RegistryKey key) {
  const std::optional<KeyPlace> place = ledger_.placed(key);
  if (!place) return inner_.remove(key);
  {
    // The values go with their key.
    const KeptError kept(errors_);
    for (const std::wstring& name : value_names(system_, *place)) ledger_.watch_value(*place, name);
    ledger_.watch_key(*place);
  }
  const ports::ErrorCode code = inner_.remove(key);
  note_key_deletion(*place, code);
  return code;
}

ports::ErrorCode RecordingRegistry::remove_tree(ports::RegistryKey key, const wchar_t* subkey) {
  const std::optional<KeyPlace> place = below(key, subkey, 0);
  if (place) {
    const KeptError kept(errors_);
    watch_tree(*place);
  }
  const ports::ErrorCode code = inner_.remove_tree(key, subkey);
  if (place && subkey != nullptr && *subkey != L'\0') note_key_deletion(*place, code);
  return code;
}

ports::ErrorCode RecordingRegistry::load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) {
  {
    const KeptError kept(errors_);
    ledger_.watch_content(file == nullptr ? L"" : file);
  }
  const ports::ErrorCode code = inner_.load_hive(key, name, file);
  const std::optional<KeyPlace> place = below(key, name, 0);
  if (code != ports::code::success || !place) return code;
  ledger_.unsettle(place->path());
  ledger_.note_hive(*place, true);
  ledger_.add_action("hive-mounted", place->path() + L" from " + plain_path(file == nullptr ? L"" : file));
  return code;
}

ports::ErrorCode RecordingRegistry::unload_hive(ports::RegistryKey key, const wchar_t* name) {
  const std::optional<KeyPlace> place = below(key, name, 0);
  if (!place) return inner_.unload_hive(key, name);
  {
    const KeptError kept(errors_);
    ledger_.settle(place->path());
  }
  const ports::ErrorCode code = inner_.unload_hive(key, name);
  if (code == ports::code::success) {
    ledger_.note_hive(*place, false);
    ledger_.add_action("hive-unmounted", place->path());
  } else {
    ledger_.unsettle(place->path());
  }
  return code;
}

}  // namespace record
