#include "host/deletion/registry_removal.h"

#include <gtest/gtest.h>

#include <string>

#include "host/current_store.h"
#include "installer/desktop/commands/base/global_data.h"
#include "platform/faults/faulty_system.h"
#include "platform/ports/codes.h"
#include "tests/support/bare_machine.h"
#include "tests/support/user_profiles.h"

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
  faults::FaultySystem faulty{system};
  ports::System watched = faulty.system();
  ports::ErrorCode remove_key(const wchar_t* base, const wchar_t* subkey, bool recursive = true) {
    const host::RegistryTarget target = host::decide_registry_key(base, subkey);
    EXPECT_EQ(target.refusal, nullptr);
    return host::RegistryRemoval(watched.registry, view).remove_key(target, recursive);
  }
  ports::ErrorCode remove_value(const wchar_t* base, const wchar_t* subkey, const wchar_t* name) {
    const host::RegistryTarget target = host::decide_registry_value(base, subkey);
    EXPECT_EQ(target.refusal, nullptr);
    return host::RegistryRemoval(watched.registry, view).remove_value(target, name);
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

TEST_F(RegistryRemovalTest, AMountedHiveIsAUserAndIsGivenBackChanged) {
  support::NamedWorld world;
  world.file(L"C:\\Users\\carla\\NTUSER.DAT", support::hive_content(L"Software\\T\\In"));
  machine.change([&world](machine::State& state) {
    state = world.state;
    state.enabled_privileges = {machine::privilege::restore, machine::privilege::backup};
  });
  const wchar_t mount[] = L"S-1-5-21-9__ky_setup__";
  ASSERT_EQ(system.registry.load_hive(users, mount, L"C:\\Users\\carla\\NTUSER.DAT"), code::success);
  EXPECT_EQ(remove_key(L"HKEY_USERS", L"*\\Software\\T"), code::success);
  EXPECT_TRUE(key_there(users, L"S-1-5-21-9__ky_setup__\\Software"));
  EXPECT_FALSE(key_there(users, L"S-1-5-21-9__ky_setup__\\Software\\T"));
  EXPECT_EQ(system.registry.unload_hive(users, mount), code::success) << "no key of it is open";
  ASSERT_EQ(system.registry.load_hive(users, mount, L"C:\\Users\\carla\\NTUSER.DAT"), code::success);
  EXPECT_FALSE(key_there(users, L"S-1-5-21-9__ky_setup__\\Software\\T"));
}

TEST_F(RegistryRemovalTest, EveryKeyIsOpenedInTheViewThatIsWantedAndTheOtherViewIsLeft) {
  key(local_machine, L"SOFTWARE\\Wow6432Node\\T\\In");
  // A machine where a view means something: only in the 32-bit one does the path lead below Wow6432Node.
  view = ports::registry_access::view_32;
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T"), code::success);
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\Wow6432Node\\T"));
  EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\T\\In\\Deep"));
  key(local_machine, L"SOFTWARE\\Wow6432Node\\T\\In");
  view = ports::registry_access::view_64;
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T"), code::success);
  EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\Wow6432Node\\T\\In"));
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\T"));
  EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Wow6432Node\\T"), code::success) << "by its path";
  EXPECT_FALSE(key_there(local_machine, L"SOFTWARE\\Wow6432Node\\T"));
}

TEST_F(RegistryRemovalTest, AFailureIsToldAndTheOtherKeysGo) {
  using faults::Operation;
  // Of SOFTWARE\T with In\Deep and Also, call by call: SOFTWARE, T, Also, In, In\Deep.
  const struct {
    const char* kind;
    Operation operation;
    std::uint64_t call;
    bool also_left;
    bool deep_left;
  } rows[] = {
      {"a key on the way", Operation::registry_open, 1, true, true},
      {"the look whether it is a link", Operation::registry_query, 2, true, true},
      {"a key below", Operation::registry_open, 3, true, false},
      {"a key deeper below", Operation::registry_open, 5, false, true},
      {"the look whether one below is a link", Operation::registry_query, 3, true, false},
      {"the end of a list", Operation::registry_subkey, 3, false, false},
      {"a deletion below", Operation::registry_remove, 1, true, false},
      {"the last deletion", Operation::registry_remove, 4, false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    key(local_machine, L"SOFTWARE\\T\\Also");
    key(local_machine, L"SOFTWARE\\T\\In\\Deep");
    faulty.fail(row.operation, faulty.calls(row.operation) + row.call, false, code::access_denied);
    EXPECT_EQ(remove_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\T"), code::access_denied);
    EXPECT_TRUE(key_there(local_machine, L"SOFTWARE\\T"));
    EXPECT_EQ(key_there(local_machine, L"SOFTWARE\\T\\Also"), row.also_left);
    EXPECT_EQ(key_there(local_machine, L"SOFTWARE\\T\\In\\Deep"), row.deep_left);
    EXPECT_EQ(machine.registry().open_keys(), 0U);
  }
}

TEST_F(RegistryRemovalTest, OneUsersFailureLeavesTheOthersTheirTurn) {
  for (const wchar_t* const path : {L"S-1-5-21-7\\Software\\T", L"S-1-5-21-8\\Software\\T"}) {
    value(users, (hive(std::wstring(L"HKEY_USERS\\") + path), path), L"Number");
  }
  machine.change([](machine::State& state) {
    state.registry.keys.at(make_keys(state.registry, L"HKEY_USERS\\S-1-5-21-7\\Software\\T")).protect = true;
  });
  EXPECT_EQ(remove_value(L"HKEY_USERS", L"*\\Software\\T", L"Number"), code::access_denied);
  EXPECT_TRUE(value_there(users, L"S-1-5-21-7\\Software\\T", L"Number"));
  EXPECT_FALSE(value_there(users, L"S-1-5-21-8\\Software\\T", L"Number"));
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
