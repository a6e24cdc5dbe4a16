#pragma once

#include "platform/faults/faulty.h"
#include "platform/ports/registry.h"

namespace faults {

/// A registry whose calls fail by plan.
class FaultyRegistry final : public Faulty<ports::Registry> {
 public:
  using Faulty::Faulty;

  ports::ErrorCode open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                        ports::RegistryKey& out) override {
    return answer(Operation::registry_open, [&] { return inner_.open(parent, subkey, options, access, out); });
  }
  ports::ErrorCode create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                          ports::RegistryKey& out, bool& created) override {
    return answer(Operation::registry_create,
                  [&] { return inner_.create(parent, subkey, options, access, out, created); });
  }
  ports::ErrorCode close(ports::RegistryKey key) override {
    return answer(Operation::registry_close, [&] { return inner_.close(key); });
  }
  ports::ErrorCode subkey(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override {
    return answer(Operation::registry_subkey, [&] { return inner_.subkey(key, position, name); });
  }
  ports::ErrorCode value_name(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override {
    return answer(Operation::registry_value_name, [&] { return inner_.value_name(key, position, name); });
  }
  ports::ErrorCode query(ports::RegistryKey key, const wchar_t* name, ports::RegistryValue& out) override {
    return answer(Operation::registry_query, [&] { return inner_.query(key, name, out); });
  }
  ports::ErrorCode set(ports::RegistryKey key, const wchar_t* name, const ports::RegistryValue& value) override {
    return answer(Operation::registry_set, [&] { return inner_.set(key, name, value); });
  }
  ports::ErrorCode remove_value(ports::RegistryKey key, const wchar_t* name) override {
    return answer(Operation::registry_remove_value, [&] { return inner_.remove_value(key, name); });
  }
  ports::ErrorCode remove(ports::RegistryKey key) override {
    return answer(Operation::registry_remove, [&] { return inner_.remove(key); });
  }
  ports::ErrorCode subkey_within(ports::RegistryKey key, std::uint32_t position, std::uint32_t room,
                                 std::wstring& name) override {
    return answer(Operation::registry_subkey_within, [&] { return inner_.subkey_within(key, position, room, name); });
  }
  ports::ErrorCode information(ports::RegistryKey key, ports::KeyInformation& out) override {
    return answer(Operation::registry_information, [&] { return inner_.information(key, out); });
  }
  ports::ErrorCode get_text(ports::RegistryKey key, const wchar_t* subkey, const wchar_t* name, std::span<wchar_t> into,
                            std::uint32_t& size) override {
    return answer(Operation::registry_get_text, [&] { return inner_.get_text(key, subkey, name, into, size); });
  }
  ports::ErrorCode remove_tree(ports::RegistryKey key, const wchar_t* subkey) override {
    return answer(Operation::registry_remove_tree, [&] { return inner_.remove_tree(key, subkey); });
  }
  ports::ErrorCode load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) override {
    return answer(Operation::registry_load_hive, [&] { return inner_.load_hive(key, name, file); });
  }
  ports::ErrorCode unload_hive(ports::RegistryKey key, const wchar_t* name) override {
    return answer(Operation::registry_unload_hive, [&] { return inner_.unload_hive(key, name); });
  }
};

}  // namespace faults
