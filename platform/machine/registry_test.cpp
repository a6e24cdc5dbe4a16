#include "platform/machine/registry.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

// What only a machine can show; the rest is in the contract tests of the port.
namespace machine {
namespace {

namespace code = ports::code;
namespace right = ports::registry_access;
using ports::RegistryKey;
using support::NamedWorld;

class MachineRegistry : public testing::Test {
 protected:
  void make() { machine = world.make(); }

  [[nodiscard]] ports::ErrorCode open(const wchar_t* path, std::uint32_t access, std::uint32_t options = 0) {
    return machine->registry().open(RegistryKey::local_machine, path, options, access, key);
  }

  void link(const wchar_t* from, std::wstring_view target) {
    KeyNode& node = world.state.registry.keys.at(make_keys(world.state.registry, from));
    node.link = true;
    node.values[std::wstring(link_value_name)] = {ports::RegistryType::link, text_bytes(target, false)};
  }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
  RegistryKey key = RegistryKey::null;
};

TEST_F(MachineRegistry, LinksAreFollowedUnlessTheyAreAskedFor) {
  world.value(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Real\\Sub", L"v", L"x");
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Link", L"\\Registry\\Machine\\SOFTWARE\\Real");
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Round", L"\\REGISTRY\\MACHINE\\SOFTWARE\\Round");
  make();
  std::wstring name;
  ASSERT_EQ(open(L"SOFTWARE\\Link", right::read), code::success);
  EXPECT_EQ(machine->registry().subkey(key, 0, name), code::success);
  EXPECT_EQ(name, L"Sub");
  EXPECT_EQ(open(L"software\\link\\sub\\", right::read), code::success);
  EXPECT_EQ(open(L"SOFTWARE\\Round", right::read), code::filename_too_long);
  ASSERT_EQ(open(L"SOFTWARE\\Link", right::erase, ports::registry_option::open_link), code::success);
  EXPECT_EQ(machine->registry().remove(key), code::success);
  EXPECT_EQ(open(L"SOFTWARE\\Real\\Sub", right::read), code::success);
}

TEST_F(MachineRegistry, RightsAreThoseOfTheOpening) {
  world.value(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\A", L"v", L"x").key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Own");
  world.state.registry.keys.at(make_keys(world.state.registry, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Own")).protect = true;
  make();
  ASSERT_EQ(open(L"SOFTWARE\\A", right::read), code::success);
  EXPECT_EQ(machine->registry().remove_value(key, L"v"), code::access_denied);
  EXPECT_EQ(machine->registry().remove(key), code::access_denied);
  EXPECT_EQ(open(L"SOFTWARE\\Own", right::read), code::success);
  EXPECT_EQ(open(L"SOFTWARE\\Own", right::write), code::access_denied);
  EXPECT_EQ(open(L"\\SOFTWARE", right::read), code::bad_path_name);
}

TEST_F(MachineRegistry, HivesAndTheirParentsStand) {
  make();
  bool created = false;
  EXPECT_EQ(machine->registry().create(RegistryKey::users, L"New", 0, right::read, key, created),
            code::invalid_parameter);
  for (const wchar_t* path : {L"", L"SOFTWARE"}) {
    ASSERT_EQ(open(path, right::erase), code::success);
    EXPECT_EQ(machine->registry().remove(key), code::access_denied);
  }
}

TEST_F(MachineRegistry, TheCurrentUserIsOneOfTheUsers) {
  world.key(std::wstring(L"HKEY_USERS\\") + NamedWorld::anna + L"\\Software\\Mine");
  make();
  EXPECT_EQ(machine->registry().open(RegistryKey::current_user, L"Software\\Mine", 0, right::read, key), code::success);
}

}  // namespace
}  // namespace machine
