#include "platform/win32/registry.h"

#include "platform/win32/native_api.h"

namespace win32 {

namespace {

// The system's limits, terminator included.
constexpr DWORD key_name_capacity = 256;
constexpr DWORD value_name_capacity = 16384;

HKEY native(ports::RegistryKey key) {
  return reinterpret_cast<HKEY>(key);
}

ports::RegistryKey ported(HKEY key) {
  return static_cast<ports::RegistryKey>(reinterpret_cast<std::uintptr_t>(key));
}

ports::ErrorCode code_of(LSTATUS status) {
  return static_cast<ports::ErrorCode>(status);
}

}  // namespace

ports::ErrorCode Registry::open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                std::uint32_t access, ports::RegistryKey& out) {
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyExW(native(parent), subkey, options, access, &opened);
  if (status == ERROR_SUCCESS) out = ported(opened);
  return code_of(status);
}

ports::ErrorCode Registry::create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                  std::uint32_t access, ports::RegistryKey& out, bool& created) {
  HKEY opened = nullptr;
  DWORD disposition = 0;
  const LSTATUS status =
      RegCreateKeyExW(native(parent), subkey, 0, nullptr, options, access, nullptr, &opened, &disposition);
  if (status == ERROR_SUCCESS) {
    out = ported(opened);
    created = disposition == REG_CREATED_NEW_KEY;
  }
  return code_of(status);
}

ports::ErrorCode Registry::close(ports::RegistryKey key) {
  return code_of(RegCloseKey(native(key)));
}

ports::ErrorCode Registry::subkey(ports::RegistryKey key, std::uint32_t position, std::wstring& name) {
  wchar_t buffer[key_name_capacity];
  DWORD length = key_name_capacity;
  const LSTATUS status = RegEnumKeyExW(native(key), position, buffer, &length, nullptr, nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS) name.assign(buffer, length);
  return code_of(status);
}

ports::ErrorCode Registry::subkey_within(ports::RegistryKey key, std::uint32_t position, std::uint32_t room,
                                         std::wstring& name) {
  std::wstring buffer(room, L'\0');
  DWORD length = room;
  const LSTATUS status =
      RegEnumKeyExW(native(key), position, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS) name.assign(buffer, 0, length);
  return code_of(status);
}

ports::ErrorCode Registry::information(ports::RegistryKey key, ports::KeyInformation& out) {
  DWORD subkeys = 0;
  DWORD longest = 0;
  DWORD values = 0;
  const LSTATUS status = RegQueryInfoKeyW(native(key), nullptr, nullptr, nullptr, &subkeys, &longest, nullptr, &values,
                                          nullptr, nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS) out = {subkeys, longest, values};
  return code_of(status);
}

ports::ErrorCode Registry::value_name(ports::RegistryKey key, std::uint32_t position, std::wstring& name) {
  std::wstring buffer(value_name_capacity, L'\0');
  DWORD length = value_name_capacity;
  const LSTATUS status =
      RegEnumValueW(native(key), position, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS) name.assign(buffer, 0, length);
  return code_of(status);
}

ports::ErrorCode Registry::query(ports::RegistryKey key, const wchar_t* name, ports::RegistryValue& out) {
  std::vector<std::uint8_t> bytes(256);
  for (;;) {
    DWORD type = 0;
    DWORD size = static_cast<DWORD>(bytes.size());
    const LSTATUS status = RegQueryValueExW(native(key), name, nullptr, &type, bytes.data(), &size);
    if (status == ERROR_SUCCESS) {
      bytes.resize(size);
      out = {static_cast<ports::RegistryType>(type), std::move(bytes)};
    }
    // Another may write a longer value between two looks, so the size is never trusted for good.
    if (status != ERROR_MORE_DATA) return code_of(status);
    bytes.resize(size);
  }
}

ports::ErrorCode Registry::get_text(ports::RegistryKey key, const wchar_t* subkey, const wchar_t* name,
                                    std::span<wchar_t> into, std::uint32_t& size) {
  DWORD bytes = static_cast<DWORD>(into.size_bytes());
  const LSTATUS status =
      RegGetValueW(native(key), subkey, name, RRF_RT_REG_SZ, nullptr, into.empty() ? nullptr : into.data(), &bytes);
  size = bytes;
  return code_of(status);
}

ports::ErrorCode Registry::set(ports::RegistryKey key, const wchar_t* name, const ports::RegistryValue& value) {
  return code_of(RegSetValueExW(native(key), name, 0, static_cast<DWORD>(value.type), value.bytes.data(),
                                static_cast<DWORD>(value.bytes.size())));
}

ports::ErrorCode Registry::remove_value(ports::RegistryKey key, const wchar_t* name) {
  return code_of(RegDeleteValueW(native(key), name));
}

ports::ErrorCode Registry::remove(ports::RegistryKey key) {
  const LONG status = NtDeleteKey(native(key));
  return status == 0 ? ERROR_SUCCESS : RtlNtStatusToDosError(status);
}

ports::ErrorCode Registry::remove_tree(ports::RegistryKey key, const wchar_t* subkey) {
  return code_of(RegDeleteTreeW(native(key), subkey));
}

ports::ErrorCode Registry::load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) {
  return code_of(RegLoadKeyW(native(key), name, file));
}

ports::ErrorCode Registry::unload_hive(ports::RegistryKey key, const wchar_t* name) {
  return code_of(RegUnLoadKeyW(native(key), name));
}

}  // namespace win32
