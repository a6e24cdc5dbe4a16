#pragma once

#include <map>

#include "platform/machine/state.h"
#include "platform/ports/registry.h"

namespace machine {

/// The machine's registry. HKEY_CURRENT_USER is the user's key below HKEY_USERS, HKEY_CLASSES_ROOT the machine's
/// SOFTWARE\Classes. Subkeys and values are listed by name.
class Registry final : public ports::Registry {
 public:
  explicit Registry(World& world) : world_(world) {}

  [[nodiscard]] ports::ErrorCode open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                      std::uint32_t access, ports::RegistryKey& out) override;
  [[nodiscard]] ports::ErrorCode create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options,
                                        std::uint32_t access, ports::RegistryKey& out, bool& created) override;
  ports::ErrorCode close(ports::RegistryKey key) override;
  [[nodiscard]] ports::ErrorCode subkey(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override;
  [[nodiscard]] ports::ErrorCode value_name(ports::RegistryKey key, std::uint32_t position,
                                            std::wstring& name) override;
  [[nodiscard]] ports::ErrorCode query(ports::RegistryKey key, const wchar_t* name, ports::RegistryValue& out) override;
  [[nodiscard]] ports::ErrorCode set(ports::RegistryKey key, const wchar_t* name,
                                     const ports::RegistryValue& value) override;
  [[nodiscard]] ports::ErrorCode remove_value(ports::RegistryKey key, const wchar_t* name) override;
  [[nodiscard]] ports::ErrorCode remove(ports::RegistryKey key) override;
  [[nodiscard]] ports::ErrorCode subkey_within(ports::RegistryKey key, std::uint32_t position, std::uint32_t room,
                                               std::wstring& name) override;
  [[nodiscard]] ports::ErrorCode information(ports::RegistryKey key, ports::KeyInformation& out) override;
  [[nodiscard]] ports::ErrorCode get_text(ports::RegistryKey key, const wchar_t* subkey, const wchar_t* name,
                                          std::span<wchar_t> into, std::uint32_t& size) override;
  [[nodiscard]] ports::ErrorCode remove_tree(ports::RegistryKey key, const wchar_t* subkey) override;
  [[nodiscard]] ports::ErrorCode load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) override;
  [[nodiscard]] ports::ErrorCode unload_hive(ports::RegistryKey key, const wchar_t* name) override;

  /// How many keys are open; a test's leak check.
  [[nodiscard]] std::size_t open_keys();

 private:
  struct OpenKey {
    KeyId key = 0;
    std::uint32_t access = 0;
  };
  /// How far a walk over a key's subkeys has come.
  struct Walk {
    KeyId key = 0;
    std::uint64_t turns = 0;
    std::uint32_t position = 0;
    std::wstring name;
  };

  /// The open key behind a handle, if it is still there and was opened with `right`.
  [[nodiscard]] ports::ErrorCode use(ports::RegistryKey key, std::uint32_t right, OpenKey& out)
      KY_REQUIRES(world_.mutex);
  /// The key at a path from an open key; links are followed.
  [[nodiscard]] ports::ErrorCode find(ports::RegistryKey from, std::uint32_t right, const wchar_t* subkey,
                                      KeyFound& out) KY_REQUIRES(world_.mutex);
  /// The name of subkey number `position`; null at the end.
  [[nodiscard]] const std::wstring* subkey_at(ports::RegistryKey handle, KeyId key, std::uint32_t position)
      KY_REQUIRES(world_.mutex);
  /// Whether hives may be mounted below this key by this process.
  [[nodiscard]] ports::ErrorCode hive_place(ports::RegistryKey key, KeyId& root) KY_REQUIRES(world_.mutex);
  [[nodiscard]] ports::ErrorCode grant(KeyId key, std::uint32_t access, ports::RegistryKey& out)
      KY_REQUIRES(world_.mutex);

  World& world_;
  std::map<ports::RegistryKey, OpenKey> open_ KY_GUARDED_BY(world_.mutex);
  std::map<ports::RegistryKey, Walk> walks_ KY_GUARDED_BY(world_.mutex);
  std::uintptr_t last_ KY_GUARDED_BY(world_.mutex) = 0;
};

}  // namespace machine
