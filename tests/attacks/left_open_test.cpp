#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "tests/attacks/attacked_world.h"
#include "tests/support/user_profiles.h"

// What the commands leave open by design, as docs/security.md lists it: each test shows one door as it stands.
namespace attacks {
namespace {

constexpr wchar_t twin[] = L"C:\\Victim\\Suite\\a.txt";

TEST(LeftOpen, DeleteFileFollowsALinkAmongTheParents) {
  for (const AttackedWorld::Plant plant : {&AttackedWorld::junction, &AttackedWorld::symbolic_link}) {
    AttackedWorld world;
    (world.*plant)(L"C:\\Data", L"C:\\Victim");
    EXPECT_EQ(world.run_under("DeleteFile", {{"pathFile", "C:\\Data\\Suite\\a.txt"}}), 0U);
    EXPECT_FALSE(world.system.files.exists(twin));
  }
}

TEST(LeftOpen, DeleteFileTakesTheAttributesOffAllNamesOfAFile) {
  AttackedWorld world;
  world.hard_link(L"C:\\Data\\Suite\\a.txt", twin);
  EXPECT_EQ(world.run_under("DeleteFile", {{"pathFile", "C:\\Data\\Suite\\a.txt"}}), 0U);
  EXPECT_EQ(world.system.files.attributes(twin), ports::file_attribute::normal);
}

/// A world in which a file that is to go is in use.
support::NamedWorld with_file_in_use() {
  support::NamedWorld layout = AttackedWorld::laid_out();
  layout.held(L"C:\\Data\\Suite\\In\\b.txt", 1, ports::file_share::read);
  return layout;
}

TEST(LeftOpen, WhatIsBookedForTheNextStartGoesByItsPath) {
  AttackedWorld world(with_file_in_use());
  EXPECT_EQ(
      world.run_under("DeleteFolder", {{"path", "C:\\Data\\Suite"}, {"recursive", "1"}, {"deleteAfterReboot", "1"}}),
      0U);
  // Until the next start nobody holds the folders above any more.
  EXPECT_EQ(world.world.state().pending_moves.at(0).from, L"C:\\Data\\Suite\\In\\b.txt");
  EXPECT_EQ(world.world.state().pending_moves.at(0).to, L"");
}

TEST(LeftOpen, DeleteIfeoKeysFollowsARegistryLink) {
  const std::wstring key =
      L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\suite.exe";
  for (const std::wstring below : {L"", L"\\Below"}) {
    support::NamedWorld layout = AttackedWorld::laid_out();
    layout.key(key);
    AttackedWorld world(layout);
    world.put("IfeoExecutables", L"suite");
    world.key_link(key + below, L"SOFTWARE\\Victim\\Suite");
    EXPECT_EQ(world.run_under("DeleteIfeoKeys", {}), 0U);
    EXPECT_EQ(world.victim().find(L"SOFTWARE\\Victim\\Suite"), std::wstring::npos);
  }
}

/// True where the program at `path` ran, which writes a file.
bool ran(AttackedWorld& world) {
  return world.system.files.exists(L"C:\\ran.txt");
}
void add_program(support::NamedWorld& layout, const wchar_t* path) {
  layout.program(path, 10, 0);
  machine::Effect effect;
  effect.kind = machine::EffectKind::write_file;
  effect.path = L"C:\\ran.txt";
  layout.state.programs.back().effects = {effect};
}

TEST(LeftOpen, RunDll32RunsWhatTheSystemsSearchFindsFirst) {
  support::NamedWorld layout = AttackedWorld::laid_out();
  layout.program(L"C:\\Windows\\System32\\rundll32.exe", 10, 0);
  add_program(layout, L"C:\\Program Files\\Tavrine\\Setup\\rundll32.exe");
  AttackedWorld world(layout);
  EXPECT_EQ(world.run_under("RunDll32", {{"filePath", "C:\\Data\\Suite\\a.txt"},
                                         {"arguments", "a.txt,Go"},
                                         {"currentDir", "C:\\Data\\Suite"},
                                         {"waitAmount", "INFINITE"}}),
            0U);
  EXPECT_TRUE(ran(world));
}

TEST(LeftOpen, CleanupINFRunsPnputilFromWhereTheStoresKeySays) {
  support::NamedWorld layout = AttackedWorld::laid_out();
  const std::wstring package = L"C:\\Windows\\System32\\DriverStore\\FileRepository\\ky.inf_1\\ky.inf";
  layout.file(package).file(L"C:\\Windows\\INF\\oem1.inf");
  layout.node(L"C:\\Windows\\INF\\oem1.inf").store = package;
  layout.program(L"C:\\Windows\\System32\\pnputil.exe", 10, 0);
  add_program(layout, L"C:\\Data\\pnputil.exe");
  AttackedWorld world(layout);
  world.put("SystemPath", L"C:\\Data\\");
  EXPECT_EQ(world.run_under("CleanupINF", {{"driverName", "ky.inf"}}), 0U);
  EXPECT_TRUE(ran(world));
}

TEST(LeftOpen, AHiveIsMountedFromWhereItsPathLeads) {
  const struct {
    AttackedWorld::Plant plant;
    std::wstring place, target;
  } rows[] = {
      {&AttackedWorld::junction, L"C:\\Users\\user1001", L"C:\\Victim"},
      {&AttackedWorld::symbolic_link, L"C:\\Users\\user1001\\NTUSER.DAT", L"C:\\Victim\\NTUSER.DAT"},
      {&AttackedWorld::hard_link, L"C:\\Users\\user1001\\NTUSER.DAT", L"C:\\Victim\\NTUSER.DAT"},
  };
  for (const auto& row : rows) {
    support::NamedWorld layout = AttackedWorld::laid_out();
    support::add_profiles(layout, 1);
    layout.file(L"C:\\Victim\\NTUSER.DAT", support::hive_content(L"Software\\Suite"));
    AttackedWorld world(layout);
    const std::wstring before = world.victim();
    (world.*row.plant)(row.place, row.target);
    EXPECT_EQ(world.run_under("RegLoadAllUserHives", {}), 0U);
    // The commands that follow mean the user whose profile it is, and reach the other one's keys.
    EXPECT_EQ(
        world.run_under("DeleteRegKey", {{"base", "HKEY_USERS"}, {"subkey", "*\\Software\\Suite"}, {"recursive", "1"}}),
        0U);
    EXPECT_EQ(world.run_under("RegUnloadPreviouslyLoadedUserHives", {}), 0U);
    EXPECT_NE(world.victim(), before);
  }
}

TEST(LeftOpen, WhatIsBehindALinkCountsAsThere) {
  AttackedWorld world;
  world.junction(L"C:\\Data", L"C:\\Victim");
  world.key_link(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Data", L"SOFTWARE\\Victim");
  EXPECT_EQ(world.run_under("PathExists", {{"path", "C:\\Data\\Suite"}, {"variable", "Path"}}), 0U);
  EXPECT_EQ(world.run_under("RegKeyExists",
                            {{"base", "HKEY_LOCAL_MACHINE"}, {"subkey", "SOFTWARE\\Data\\Suite"}, {"variable", "Key"}}),
            0U);
  EXPECT_EQ(world.get_int("Path"), 1);
  EXPECT_EQ(world.get_int("Key"), 1);
}

TEST(LeftOpen, AUserMayHideKeysBehindALinkInTheirHive) {
  AttackedWorld world;
  const std::wstring before = world.victim();
  world.key_link(L"HKEY_USERS\\S-1-5-21-7\\Software", L"SOFTWARE\\Victim\\Software");
  EXPECT_EQ(
      world.run_under("DeleteRegKey", {{"base", "HKEY_USERS"}, {"subkey", "*\\Software\\Suite"}, {"recursive", "1"}}),
      ports::code::stopped_on_symlink);
  EXPECT_EQ(world.victim(), before);
}

}  // namespace
}  // namespace attacks
