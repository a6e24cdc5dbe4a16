#include "platform/machine/registry.h"

#include <gtest/gtest.h>

#include <array>

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

  void protect(const wchar_t* path) {
    world.state.registry.keys.at(make_keys(world.state.registry, path)).protect = true;
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

TEST_F(MachineRegistry, ALinkToItselfLeadsNowhere) {
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Round", L"\\REGISTRY\\MACHINE\\SOFTWARE\\Round");
  make();
  EXPECT_EQ(open(L"SOFTWARE\\Round", right::read), code::filename_too_long);
}

TEST_F(MachineRegistry, AProtectedKeyIsOnlyRead) {
  protect(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Own");
  make();
  EXPECT_EQ(open(L"software\\OWN\\", right::read), code::success);
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

TEST_F(MachineRegistry, EachViewHasItsOwnSoftware) {
  const struct {
    const wchar_t* asked;
    const wchar_t* stands;  // below SOFTWARE
  } rows[] = {
      {L"SOFTWARE\\Suite", L"Wow6432Node\\Suite"},
      {L"software\\wow6432node\\Suite", L"Wow6432Node\\Suite"},
      {L"SOFTWARE\\Classes\\CLSID\\{1}", L"Classes\\Wow6432Node\\CLSID\\{1}"},
      {L"SOFTWARE\\Classes\\.ky", L"Classes\\.ky"},
      {L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1",
       L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1"},
      {L"SOFTWARE\\Microsoft\\Windows NT\\Other", L"Wow6432Node\\Microsoft\\Windows NT\\Other"},
  };
  for (const auto& row : rows) {
    world = NamedWorld();
    world.key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\" + std::wstring(row.stands)).key(L"HKEY_LOCAL_MACHINE\\SYSTEM\\One");
    make();
    EXPECT_EQ(open(row.asked, right::read | right::view_32), code::success) << row.asked;
    const std::wstring itself = L"SOFTWARE\\" + std::wstring(row.stands);
    for (const std::uint32_t view : {0U, right::view_64}) {
      EXPECT_EQ(open(itself.c_str(), right::read | view), code::success) << row.asked;
      const bool same = NameLess()(itself, row.asked) == NameLess()(row.asked, itself);
      EXPECT_EQ(open(row.asked, right::read | view), same ? code::success : code::file_not_found) << row.asked;
    }
    EXPECT_EQ(open(L"SYSTEM\\One", right::read | right::view_32), code::success);
  }
  bool created = false;
  RegistryKey software = RegistryKey::null;
  ASSERT_EQ(machine->registry().open(RegistryKey::local_machine, L"SOFTWARE", 0, right::read, software), code::success);
  ASSERT_EQ(machine->registry().create(software, L"New", 0, right::read | right::view_32, key, created), code::success);
  EXPECT_EQ(open(L"SOFTWARE\\Wow6432Node\\New", right::read), code::success);
  EXPECT_EQ(open(L"SOFTWARE", right::view_32 | right::view_64), code::invalid_parameter);
}

TEST_F(MachineRegistry, AWalkGoesOnWhereItWasUnlessSomethingCame) {
  const std::wstring top = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Top\\";
  for (const wchar_t* name : {L"b", L"d", L"f"}) world.key(top + name);
  make();
  RegistryKey other = RegistryKey::null;
  ASSERT_EQ(open(L"SOFTWARE\\Top", right::read | right::write), code::success);
  ASSERT_EQ(machine->registry().open(key, L"", 0, right::read, other), code::success);
  const auto at = [&](RegistryKey from, std::uint32_t position) {
    std::wstring name;
    return machine->registry().subkey(from, position, name) == code::success ? name : L"-";
  };
  EXPECT_EQ(at(key, 0) + at(key, 1) + at(other, 0) + at(key, 2) + at(other, 1) + at(key, 3), L"bdbfd-");
  EXPECT_EQ(at(key, 2) + at(key, 0) + at(key, 1), L"fbd");
  machine->change([&](State& state) { make_keys(state.registry, top + L"c"); });
  EXPECT_EQ(at(key, 2) + at(other, 2), L"dd") << "b, c, d and f now";
  std::wstring name;
  EXPECT_EQ(machine->registry().subkey_within(key, 0, 1, name), code::more_data) << "no room for the terminator";
  EXPECT_EQ(machine->registry().subkey_within(key, 0, 2, name), code::success);
}

TEST_F(MachineRegistry, ATextIsExpandedWithTheMachinesVariables) {
  KeyNode& node = world.state.registry.keys.at(make_keys(world.state.registry, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Texts"));
  for (const auto& [kept, told] : {std::pair{L"%WINDIR%;%nobody%windir%;100%", L"C:\\Windows;%nobodyC:\\Windows;100%"},
                                   {L"%%", L"%%"},
                                   {L"", L""}}) {
    node.values[L"v"] = {ports::RegistryType::expandable, text_bytes(kept, false)};
    make();
    std::array<wchar_t, 50> text{};
    std::uint32_t size = 0;
    ASSERT_EQ(machine->registry().get_text(RegistryKey::local_machine, L"SOFTWARE\\Texts", L"v", text, size), 0U);
    EXPECT_STREQ(text.data(), told);
    EXPECT_EQ(size, (std::wstring(told).size() + 1) * 2) << kept;
  }
}

TEST_F(MachineRegistry, ATreeThatLeadsBackToItselfOrIsProtectedStays) {
  world.key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Loop");
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Loop\\back", L"\\Registry\\Machine\\SOFTWARE\\Loop");
  protect(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Kept\\Own");
  world.key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Own");
  make();
  Registry& registry = machine->registry();
  EXPECT_EQ(registry.remove_tree(RegistryKey::local_machine, L"SOFTWARE\\Loop"), code::filename_too_long);
  EXPECT_EQ(registry.remove_tree(RegistryKey::local_machine, L"SOFTWARE\\Kept"), code::access_denied);
  ASSERT_EQ(open(L"SOFTWARE\\Own", right::read | right::write), code::success);
  EXPECT_EQ(registry.remove_tree(key, nullptr), code::success) << "nothing is in it";
}

TEST_F(MachineRegistry, TheCurrentUserIsOneOfTheUsers) {
  world.key(std::wstring(L"HKEY_USERS\\") + NamedWorld::anna + L"\\Software\\Mine");
  make();
  EXPECT_EQ(machine->registry().open(RegistryKey::current_user, L"Software\\Mine", 0, right::read, key), code::success);
}

}  // namespace
}  // namespace machine
