#pragma once

#include "platform/ports/registry.h"

namespace win32 {

class Registry final : public ports::Registry {
 public:
  ports::ErrorCode open(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                        ports::RegistryKey& out) override;
  ports::ErrorCode create(ports::RegistryKey parent, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                          ports::RegistryKey& out, bool& created) override;
  ports::ErrorCode close(ports::RegistryKey key) override;
  ports::ErrorCode subkey(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override;
  ports::ErrorCode value_name(ports::RegistryKey key, std::uint32_t position, std::wstring& name) override;
  ports::ErrorCode query(ports::RegistryKey key, const wchar_t* name, ports::RegistryValue& out) override;
  ports::ErrorCode set(ports::RegistryKey key, const wchar_t* name, const ports::RegistryValue& value) override;
  ports::ErrorCode remove_value(ports::RegistryKey key, const wchar_t* name) override;
  ports::ErrorCode remove(ports::RegistryKey key) override;
  ports::ErrorCode subkey_within(ports::RegistryKey key, std::uint32_t position, std::uint32_t room,
                                 std::wstring& name) override;
  ports::ErrorCode information(ports::RegistryKey key, ports::KeyInformation& out) override;
  ports::ErrorCode get_text(ports::RegistryKey key, const wchar_t* subkey, const wchar_t* name, std::span<wchar_t> into,
                            std::uint32_t& size) override;
  ports::ErrorCode remove_tree(ports::RegistryKey key, const wchar_t* subkey) override;
  ports::ErrorCode load_hive(ports::RegistryKey key, const wchar_t* name, const wchar_t* file) override;
  ports::ErrorCode unload_hive(ports::RegistryKey key, const wchar_t* name) override;
};

}  // namespace win32
