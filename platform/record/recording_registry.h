#pragma once

#include "platform/ports/registry.h"
#include "platform/record/ledger.h"

namespace record {

/// A registry whose changes go into the ledger. A hive's mounting and unmounting is an action, and a change
/// where it is mounted at the end and was not before, or the other way round; what changes below it is told by the
/// keys' names while it is mounted, and by the content of its file.
class RecordingRegistry final : public ports::Registry {
 public:
  RecordingRegistry(const ports::System& inner, Ledger& ledger)
      : inner_(inner.registry), errors_(inner.errors), ledger_(ledger), system_(inner) {}

  ports::ErrorCode open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                        ports::RegistryKey& out) override;
  ports::ErrorCode create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                          ports::RegistryKey& out, bool& created) override;
  ports::ErrorCode close(ports::RegistryKey key) override;
  ports::ErrorCode set(ports::RegistryKey key, const wchar_t* name, const ports::RegistryValue& value) override;
  ports::ErrorCode remove_value(ports::RegistryKey key, const wchar_t* name) override;
  ports::ErrorCode remove(ports::RegistryKey key) override;
  ports::ErrorCode remove_tree(ports::RegistryKey key, const wchar_t* subkey) override;
  ports::ErrorCode load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) override;
  ports::ErrorCode unload_hive(ports::RegistryKey key, const wchar_t* name) override;

  ports::ErrorCode subkey(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override {
    return inner_.subkey(key, position, name);
  }
  ports::ErrorCode value_name(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override {
    return inner_.value_name(key, position, name);
  }
  ports::ErrorCode subkey_within(ports::RegistryKey key, std::uint32_t position, std::uint32_t room,
                                 std::wstring& name) override {
    return inner_.subkey_within(key, position, room, name);
  }
  ports::ErrorCode information(ports::RegistryKey key, ports::KeyInformation& out) override {
    return inner_.information(key, out);
  }
  ports::ErrorCode get_text(ports::RegistryKey key, const wchar_t* subkey, const wchar_t* name, std::span<wchar_t> into,
                            std::uint32_t& size) override {
    return inner_.get_text(key, subkey, name, into, size);
  }
  ports::ErrorCode query(ports::RegistryKey key, const wchar_t* name, ports::RegistryValue& out) override {
    return inner_.query(key, name, out);
  }

 private:
  [[nodiscard]] std::optional<KeyPlace> below(ports::RegistryKey parent, const wchar_t* subkey,
                                              std::uint32_t access) const;
  /// A key that is to go with all that lies below it, also where links lead.
  void watch_tree(const KeyPlace& place);
  void note_key_deletion(const KeyPlace& place, ports::ErrorCode code);

  ports::Registry& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
  const ports::System& system_;
};

}  // namespace record
