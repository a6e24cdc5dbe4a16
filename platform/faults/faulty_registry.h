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
};

}  // namespace faults
