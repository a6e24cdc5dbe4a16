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
  using ports::RegistryType;
  const std::wstring top = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Texts";
  const struct {
    RegistryType type;
    std::wstring kept;
    bool terminated;
    std::wstring told;
  } rows[] = {
      {RegistryType::expandable, L"%SystemDrive%\\Users\\x", true, L"C:\\Users\\x"},
      {RegistryType::expandable, L"%WINDIR%;%nobody%windir%;100%", false, L"C:\\Windows;%nobodyC:\\Windows;100%"},
      {RegistryType::expandable, L"%%", true, L"%%"},
      {RegistryType::text, L"%windir%", true, L"%windir%"},
      {RegistryType::text, L"open end", false, L"open end"},
      {RegistryType::text, L"", false, L""},
  };
  KeyNode& node = world.state.registry.keys.at(make_keys(world.state.registry, top));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    node.values[std::to_wstring(i)] = {rows[i].type, text_bytes(rows[i].kept, rows[i].terminated)};
  }
  node.values[L"number"] = {RegistryType::number, {1, 0, 0, 0}};
  make();
  const auto get = [&](const wchar_t* name, std::span<wchar_t> into, std::uint32_t& size) {
    return machine->registry().get_text(RegistryKey::local_machine, L"SOFTWARE\\Texts", name, into, size);
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const std::wstring name = std::to_wstring(i);
    std::wstring text(50, L'x');
    std::uint32_t size = 0;
    ASSERT_EQ(get(name.c_str(), {}, size), code::success);
    EXPECT_EQ(size, (rows[i].told.size() + 1) * 2) << i;
    if (size > 2) {
      EXPECT_EQ(get(name.c_str(), std::span(text).first(size / 2 - 1), size), code::more_data) << i;
    }
    ASSERT_EQ(get(name.c_str(), text, size), code::success);
    EXPECT_EQ(text.c_str(), rows[i].told);
  }
  std::uint32_t size = 0;
  EXPECT_EQ(get(L"number", {}, size), code::unsupported_type);
  EXPECT_EQ(get(L"absent", {}, size), code::file_not_found);
}

TEST_F(MachineRegistry, DeletingATreeFollowsLinksAndLeavesThemDangling) {
  for (const wchar_t* path : {L"Real\\Sub", L"Top\\a\\b", L"Other\\c", L"Loop", L"Kept\\Own"}) {
    world.key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\" + std::wstring(path));
  }
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Top\\link", L"\\Registry\\Machine\\SOFTWARE\\Real");
  link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Loop\\back", L"\\Registry\\Machine\\SOFTWARE\\Loop");
  world.state.registry.keys.at(make_keys(world.state.registry, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Kept\\Own")).protect =
      true;
  world.value(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Other", L"v", L"x");
  make();
  const auto remove = [&](const wchar_t* path) {
    return machine->registry().remove_tree(RegistryKey::local_machine, path);
  };
  EXPECT_EQ(remove(L"SOFTWARE\\Absent"), code::file_not_found);
  EXPECT_EQ(remove(L"SOFTWARE\\Top"), code::file_not_found) << "the link leads nowhere after its target went";
  EXPECT_EQ(open(L"SOFTWARE\\Real", right::read), code::file_not_found);
  EXPECT_EQ(open(L"SOFTWARE\\Top\\link", right::read, ports::registry_option::open_link), code::success);
  EXPECT_EQ(remove(L"SOFTWARE\\Loop"), code::filename_too_long);
  EXPECT_EQ(remove(L"SOFTWARE\\Kept"), code::access_denied);
  ASSERT_EQ(open(L"SOFTWARE\\Other", right::read | right::write), code::success);
  EXPECT_EQ(machine->registry().remove_tree(key, nullptr), code::success);
  ports::KeyInformation told;
  ASSERT_EQ(machine->registry().information(key, told), code::success) << "the key itself stays";
  EXPECT_EQ(told.subkeys + told.values, 0U);
}

TEST_F(MachineRegistry, TheCurrentUserIsOneOfTheUsers) {
  world.key(std::wstring(L"HKEY_USERS\\") + NamedWorld::anna + L"\\Software\\Mine");
  make();
  EXPECT_EQ(machine->registry().open(RegistryKey::current_user, L"Software\\Mine", 0, right::read, key), code::success);
}

}  // namespace
}  // namespace machine
