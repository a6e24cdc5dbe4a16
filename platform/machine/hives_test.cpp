#include "platform/machine/hives.h"

#include <gtest/gtest.h>

#include "platform/machine/document.h"
#include "platform/machine/privileges.h"
#include "platform/ports/codes.h"
#include "tests/support/user_profiles.h"

namespace machine {
namespace {

namespace code = ports::code;
namespace right = ports::registry_access;
using ports::RegistryKey;
using support::NamedWorld;

constexpr const wchar_t* hive_file = L"C:\\Users\\carla\\NTUSER.DAT";

class Hives : public testing::Test {
 protected:
  Hives() {
    world.file(hive_file, support::hive_content(L"Software\\Old")).file(L"C:\\text.txt", "no hive");
    allow(world.state);
  }

  static void allow(State& state) { state.enabled_privileges = {privilege::restore, privilege::backup}; }

  Registry& registry() { return machine->registry(); }
  ports::ErrorCode load(const wchar_t* name, const wchar_t* file = hive_file, RegistryKey root = RegistryKey::users) {
    return registry().load_hive(root, name, file);
  }
  ports::ErrorCode unload(const wchar_t* name) { return registry().unload_hive(RegistryKey::users, name); }
  ports::ErrorCode open(const wchar_t* path) {
    return registry().open(RegistryKey::users, path, 0, right::read | right::write | right::erase, key);
  }
  /// Starts anew on what a document keeps of the machine.
  void restart() {
    State next = read_document(machine->to_json(), "next.json");
    allow(next);
    machine = std::make_unique<Machine>(std::move(next), Options());
  }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
  RegistryKey key = RegistryKey::null;
  bool created = false;
};

TEST_F(Hives, WhatChangesWhileOneIsMountedIsInItsFile) {
  machine = world.make();
  ASSERT_EQ(load(L"c"), code::success);
  ASSERT_EQ(open(L"c\\Software\\Old"), code::success);
  EXPECT_EQ(registry().remove(key), code::success);
  EXPECT_EQ(registry().close(key), code::success);
  for (const auto& [path, option] : {std::pair{L"c\\New", 0U}, {L"c\\Passing", ports::registry_option::is_volatile}}) {
    ASSERT_EQ(registry().create(RegistryKey::users, path, option, right::write, key, created), code::success);
    EXPECT_EQ(unload(L"c"), code::access_denied) << "a key below is open";
    EXPECT_EQ(registry().close(key), code::success);
  }
  ASSERT_EQ(open(L"c"), code::success);
  EXPECT_EQ(registry().remove_tree(RegistryKey::users, L"c\\Software"), code::success);
  EXPECT_EQ(registry().remove(key), code::access_denied) << "a hive's root";
  EXPECT_EQ(unload(L"c"), code::access_denied) << "the root is open";
  EXPECT_EQ(registry().close(key), code::success);
  ASSERT_EQ(unload(L"C"), code::success);
  EXPECT_EQ(open(L"c"), code::file_not_found);
  restart();
  ASSERT_EQ(load(L"d", L"c:\\users\\CARLA\\ntuser.dat", RegistryKey::local_machine), code::success);
  EXPECT_EQ(registry().open(RegistryKey::local_machine, L"d\\New", 0, right::read, key), code::success);
  for (const wchar_t* gone : {L"d\\Software", L"d\\Passing"}) {
    EXPECT_EQ(registry().open(RegistryKey::local_machine, gone, 0, right::read, key), code::file_not_found) << gone;
  }
}

TEST_F(Hives, AMountedFileIsTheRegistrysAlone) {
  machine = world.make();
  ASSERT_EQ(load(L"c"), code::success);
  Files& files = machine->files();
  const auto refused = [&](bool done) { return !done && machine->errors().last() == code::sharing_violation; };
  EXPECT_TRUE(refused(files.remove(hive_file)));
  EXPECT_TRUE(refused(files.move(hive_file, L"C:\\x", 0)));
  restart();
  EXPECT_TRUE(refused(machine->files().remove(hive_file))) << "a run that was cut off leaves it mounted";
  ASSERT_EQ(unload(L"c"), code::success);
  EXPECT_TRUE(machine->files().remove(hive_file));
}

TEST_F(Hives, WhatCannotBeMountedOrUnmounted) {
  world.file(L"C:\\held", support::hive_content(L"A"))
      .held(L"C:\\held", 1, ports::file_share::all)
      .folder(L"C:\\folder");
  world.file(L"C:\\broken", support::hive_content(L"A") + "x");
  machine = world.make();
  const struct {
    const wchar_t* name;
    const wchar_t* file;
    ports::ErrorCode error;
  } rows[] = {
      {L"c", L"C:\\Users\\carla\\absent", code::file_not_found},
      {L"c", L"C:\\absent\\NTUSER.DAT", code::path_not_found},
      {L"c", L"C:\\folder", code::access_denied},
      {L"c", L"C:\\text.txt", code::bad_database},
      {L"c", L"C:\\broken", code::bad_database},
      {L"c", L"C:\\held", code::sharing_violation},
      {NamedWorld::bernd, hive_file, code::already_exists},
      {L"", hive_file, code::invalid_parameter},
      {L"c\\d", hive_file, code::invalid_parameter},
  };
  for (const auto& row : rows) EXPECT_EQ(load(row.name, row.file), row.error) << row.name << ' ' << row.file;
  EXPECT_EQ(load(L"c", hive_file, RegistryKey::current_user), code::invalid_parameter);
  EXPECT_EQ(open(L"c"), code::file_not_found);
  EXPECT_EQ(unload(L"c"), code::file_not_found);
  EXPECT_EQ(unload(NamedWorld::bernd), code::invalid_parameter);
  for (const auto missing : {privilege::restore, privilege::backup}) {
    machine->change([&](State& state) {
      allow(state);
      state.enabled_privileges.erase(missing);
    });
    EXPECT_EQ(load(L"c"), code::privilege_not_held);
    EXPECT_EQ(unload(L"c"), code::privilege_not_held);
  }
}

}  // namespace
}  // namespace machine
