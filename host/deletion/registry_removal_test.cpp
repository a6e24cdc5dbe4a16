#include "host/deletion/registry_removal.h"

#include <gtest/gtest.h>

#include <string>

#include "host/current_store.h"
#include "installer/desktop/commands/base/global_data.h"
#include "platform/ports/codes.h"
#include "tests/support/bare_machine.h"

namespace {

namespace code = ports::code;
using ports::RegistryKey;

constexpr RegistryKey local_machine = RegistryKey::local_machine;
constexpr RegistryKey users = RegistryKey::users;

class RegistryRemovalTest : public testing::Test, public support::BareMachine {
 protected:
  RegistryRemovalTest() {
    key(local_machine, L"SOFTWARE\\T\\In\\Deep");
    value(local_machine, L"SOFTWARE\\T", L"Number");
    value(local_machine, L"SOFTWARE\\Other\\Sub", L"Number");
    ports::bind(system);
    ky::BindStore(&host::get_current, &host::put_current);
  }
  ~RegistryRemovalTest() override { ports::unbind(); }

  /// What the system alone makes: a key right below a root, a link where there is a target.
  void hive(const std::wstring& path, const std::wstring& target = {}) {
    machine.change([&](machine::State& state) {
      machine::KeyNode& node = state.registry.keys.at(make_keys(state.registry, path));
      if (target.empty()) return;
      node.link = true;
      node.values[L"SymbolicLinkValue"] = {ports::RegistryType::link, machine::text_bytes(target, false)};
    });
  }
  std::uint32_t view = 0;
  ports::ErrorCode remove_key(const wchar_t* base, const wchar_t* subkey, bool recursive = true) {
    const host::RegistryTarget target = host::decide_registry_key(base, subkey);
    EXPECT_EQ(target.refusal, nullptr);
    return host::RegistryRemoval(system.registry, view).remove_key(target, recursive);
  }
  ports::ErrorCode remove_value(const wchar_t* base, const wchar_t* subkey, const wchar_t* name) {
    const host::RegistryTarget target = host::decide_registry_value(base, subkey);
    EXPECT_EQ(target.refusal, nullptr);
    return host::RegistryRemoval(system.registry, view).remove_value(target, name);
  }
};

TEST_F(RegistryRemovalTest, AKeyGoesWithAllThatIsBelowItAndNothingElse) {
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T", false), code::key_has_children);
  EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\T\\In\\Deep"));
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T\\In\\Deep", false), code::success);
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"software\\t\\"), code::success);
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\T"));
  EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\Other\\Sub"));
}

TEST_F(RegistryRemovalTest, WhatIsAbsentIsASuccess) {
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\None\\Below"), code::success);
  EXPECT_EQ(remove_value(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\None", L"Number"), code::success);
  EXPECT_EQ(remove_value(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T", L"None"), code::success);
  EXPECT_EQ(remove_value(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T", L"NUMBER"), code::success);
  EXPECT_FALSE(value_there(local_machine, L"SOFTWARE\\T", L"Number"));
}

TEST_F(RegistryRemovalTest, ALinkGoesItselfAndIsNeverFollowed) {
  key_link(local_machine, L"SOFTWARE\\T\\Link", L"\\REGISTRY\\MACHINE\\SOFTWARE\\Other");
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T\\Link\\Sub"), code::stopped_on_symlink);
  EXPECT_EQ(remove_value(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T\\Link\\Sub", L"Number"), code::stopped_on_symlink);
  EXPECT_EQ(remove_value(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T\\Link", L"Number"), code::stopped_on_symlink);
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T"), code::success) << "a link below goes with the rest";
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\T"));
  EXPECT_TRUE(value_there(local_machine, L"SOFTWARE\\Other\\Sub", L"Number"));

  key_link(local_machine, L"SOFTWARE\\Link", L"\\REGISTRY\\MACHINE\\SOFTWARE\\Other");
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Link"), code::success);
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\Link"));
  EXPECT_TRUE(value_there(local_machine, L"SOFTWARE\\Other\\Sub", L"Number"));
}

TEST_F(RegistryRemovalTest, TheCurrentControlSetIsPassedThroughItsLink) {
  hive(L"HKEY_LOCAL_MACHINE\\SYSTEM");
  key(local_machine, L"SYSTEM\\ControlSet001\\Services\\T");
  key_link(local_machine, L"SYSTEM\\CurrentControlSet", L"\\REGISTRY\\MACHINE\\SYSTEM\\ControlSet001");
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SYSTEM\\CurrentControlSet\\Services\\T"), code::success);
  EXPECT_FALSE(key_there(local_machine, L"SYSTEM\\ControlSet001\\Services\\T"));
  EXPECT_TRUE(key_there(local_machine, L"SYSTEM\\ControlSet001\\Services"));
}

TEST_F(RegistryRemovalTest, AStarMeansEachUserOnceAndNoClasses) {
  for (const wchar_t* const path : {L".DEFAULT\\Software\\T\\In", L"S-1-5-21-7\\Software\\T",
                                    L"S-1-5-21-7_Classes\\Software\\T", L"S-1-5-21-8\\Software"}) {
    hive(std::wstring(L"HKEY_USERS\\") + path);
  }
  hive(L"HKEY_USERS\\S-1-5-18", L"\\REGISTRY\\USER\\.DEFAULT");
  EXPECT_EQ(remove_key(L"HKEY_USERS", L"*\\Software\\T"), code::success);
  EXPECT_FALSE(key_there(users, L".DEFAULT\\Software\\T"));
  EXPECT_FALSE(key_there(users, L"S-1-5-21-7\\Software\\T"));
  EXPECT_TRUE(key_there(users, L"S-1-5-21-7\\Software"));
  EXPECT_TRUE(key_there(users, L"S-1-5-21-7_Classes\\Software\\T"));
}

TEST_F(RegistryRemovalTest, WhatIsProtectedStaysAndTheRestGoes) {
  key(local_machine, L"SOFTWARE\\T\\Also");
  machine.change([](machine::State& state) {
    state.registry.keys.at(make_keys(state.registry, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\T\\In")).protect = true;
  });
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T"), code::access_denied);
  EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\T\\In"));
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\T\\Also"));
}

}  // namespace
