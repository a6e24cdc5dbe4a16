#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/types.h"

namespace ports {

/// An open registry key. The predefined ones are always open and need no closing.
enum class RegistryKey : std::uintptr_t {
  null = 0,
  classes_root = 0xFFFFFFFF80000000,
  current_user = 0xFFFFFFFF80000001,
  local_machine = 0xFFFFFFFF80000002,
  users = 0xFFFFFFFF80000003,
};

namespace registry_access {
inline constexpr std::uint32_t query_value = 0x1;
inline constexpr std::uint32_t set_value = 0x2;
inline constexpr std::uint32_t create_subkey = 0x4;
inline constexpr std::uint32_t enumerate = 0x8;
inline constexpr std::uint32_t create_link = 0x20;
inline constexpr std::uint32_t view_64 = 0x100;
inline constexpr std::uint32_t view_32 = 0x200;
inline constexpr std::uint32_t erase = 0x10000;
inline constexpr std::uint32_t read = 0x20019;
inline constexpr std::uint32_t write = 0x20006;
}  // namespace registry_access

namespace registry_option {
inline constexpr std::uint32_t is_volatile = 1;
inline constexpr std::uint32_t create_link = 2;
inline constexpr std::uint32_t open_link = 8;  // the link key itself
}  // namespace registry_option

enum class RegistryType : std::uint32_t {
  none = 0,
  text = 1,        // REG_SZ
  expandable = 2,  // REG_EXPAND_SZ
  binary = 3,
  number = 4,  // REG_DWORD
  link = 6,
  text_list = 7,  // REG_MULTI_SZ
  number64 = 11,  // REG_QWORD
};

/// A value's type and its bytes as the system keeps them: text in UTF-16 little-endian with its terminator.
struct RegistryValue {
  RegistryType type = RegistryType::none;
  std::vector<std::uint8_t> bytes;
  friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

/// What RegQueryInfoKeyW tells, as far as it is looked at.
struct KeyInformation {
  std::uint32_t subkeys = 0;
  std::uint32_t longest_subkey = 0;  // in characters, without the terminator
  std::uint32_t values = 0;
};

/// The registry. Names ignore case (ASCII). Every operation gives its error code and may be called on any thread;
/// common codes: file_not_found, access_denied, invalid_handle, key_deleted (1018, the key went while it was open).
class Registry {
 public:
  virtual ~Registry() = default;

  /// RegOpenKeyExW. `access` may ask for the view of 32-bit programs, else it is the other one; for both,
  /// invalid_parameter. An empty subkey opens the key anew. Links on the way are followed; the last part is too, unless
  /// `options` has open_link.
  [[nodiscard]] virtual ErrorCode open(RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                       std::uint32_t access, RegistryKey& out) = 0;

  /// RegCreateKeyExW: opens, or makes with all that is missing on the way. Also child_must_be_volatile.
  [[nodiscard]] virtual ErrorCode create(RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                         std::uint32_t access, RegistryKey& out, bool& created) = 0;

  /// RegCloseKey.
  virtual ErrorCode close(RegistryKey key) = 0;

  /// RegEnumKeyExW: the name of subkey number `position`. At the end no_more_items.
  [[nodiscard]] virtual ErrorCode subkey(RegistryKey key, std::uint32_t position, std::wstring& name) = 0;

  /// RegEnumKeyExW with room for `room` characters, terminator included: as `subkey`, and more_data for a name that
  /// does not fit.
  [[nodiscard]] virtual ErrorCode subkey_within(RegistryKey key, std::uint32_t position, std::uint32_t room,
                                                std::wstring& name) = 0;

  /// RegQueryInfoKeyW.
  [[nodiscard]] virtual ErrorCode information(RegistryKey key, KeyInformation& out) = 0;

  /// RegEnumValueW: the name of value number `position`. At the end no_more_items.
  [[nodiscard]] virtual ErrorCode value_name(RegistryKey key, std::uint32_t position, std::wstring& name) = 0;

  /// RegQueryValueExW. An empty name is the key's default value.
  [[nodiscard]] virtual ErrorCode query(RegistryKey key, const wchar_t* name, RegistryValue& out) = 0;

  /// RegGetValueW of a value below `subkey`, with RRF_RT_REG_SZ: a text, of which the system expands what is
  /// expandable. With an empty `into`, `size` is the size in bytes that is wanted, terminator included; else how many
  /// bytes came. Also more_data, unsupported_type.
  [[nodiscard]] virtual ErrorCode get_text(RegistryKey key, const wchar_t* subkey, const wchar_t* name,
                                           std::span<wchar_t> into, std::uint32_t& size) = 0;

  /// RegSetValueExW.
  [[nodiscard]] virtual ErrorCode set(RegistryKey key, const wchar_t* name, const RegistryValue& value) = 0;

  /// RegDeleteValueW.
  [[nodiscard]] virtual ErrorCode remove_value(RegistryKey key, const wchar_t* name) = 0;

  /// NtDeleteKey, its status as a Windows code: deletes exactly the key that was opened, a link itself. The key needs
  /// the right `erase`. access_denied where it has subkeys. The handle still wants closing.
  [[nodiscard]] virtual ErrorCode remove(RegistryKey key) = 0;

  /// RegDeleteTreeW: the key below `key` with all that is below it; with an empty subkey, all that is in `key` alone.
  /// Each key is opened by its name, so that links are followed: what a link leads to is deleted and the link stays,
  /// and the deletion ends there with file_not_found, since it then leads nowhere. What went until a failure is gone.
  /// Also key_has_children where something came in meanwhile.
  [[nodiscard]] virtual ErrorCode remove_tree(RegistryKey key, const wchar_t* subkey) = 0;

  /// RegLoadKeyW: mounts the hive file as a key right below `key`, which is users or local_machine; the file is the
  /// system's alone until it is unmounted. Needs the privileges SeRestorePrivilege and SeBackupPrivilege, else
  /// privilege_not_held. Also file_not_found, path_not_found, sharing_violation (mounted already, or open),
  /// already_exists (the name is taken), bad_database (no hive).
  [[nodiscard]] virtual ErrorCode load_hive(RegistryKey key, const wchar_t* name, const wchar_t* file) = 0;

  /// RegUnLoadKeyW: unmounts what `load_hive` mounted; what changed is in the file. The same privileges. Also
  /// access_denied (a key below is open), file_not_found, invalid_parameter (no mounted hive).
  [[nodiscard]] virtual ErrorCode unload_hive(RegistryKey key, const wchar_t* name) = 0;
};

}  // namespace ports
