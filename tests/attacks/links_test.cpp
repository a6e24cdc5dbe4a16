#include <gtest/gtest.h>

#include <string>

#include "tests/attacks/attacked_world.h"

// Links planted in what a script deletes, before a command runs and at every moment of its run.
namespace attacks {
namespace {

struct Trap {
  const char* kind;
  AttackedWorld::Plant plant;
  std::wstring place;
  std::wstring target;
};

struct Attacked {
  const char* command;
  CommandWorld::Attributes attributes;
  std::vector<Trap> traps;
  bool held = false;  // a file in what goes is in use
};

const std::vector<Trap> folder_traps = {
    {"junction for the parent", &AttackedWorld::junction, L"C:\\Data", L"C:\\Victim"},
    {"symbolic link for the parent", &AttackedWorld::symbolic_link, L"C:\\Data", L"C:\\Victim"},
    {"junction for the folder", &AttackedWorld::junction, L"C:\\Data\\Suite", L"C:\\Victim\\Suite"},
    {"symbolic link for the folder", &AttackedWorld::symbolic_link, L"C:\\Data\\Suite", L"C:\\Victim\\Suite"},
    {"the folder turned into a junction", &AttackedWorld::junction_in_place, L"C:\\Data\\Suite", L"C:\\Victim\\Suite"},
    {"junction inside", &AttackedWorld::junction, L"C:\\Data\\Suite\\In", L"C:\\Victim\\Suite\\In"},
    {"a folder inside turned into a junction", &AttackedWorld::junction_in_place, L"C:\\Data\\Suite\\In",
     L"C:\\Victim\\Suite\\In"},
    {"symbolic link inside", &AttackedWorld::symbolic_link, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite\\a.txt"},
    {"symbolic link to a folder for a file", &AttackedWorld::symbolic_link, L"C:\\Data\\Suite\\In\\b.txt",
     L"C:\\Victim\\Suite"},
    {"hard link inside", &AttackedWorld::hard_link, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite\\a.txt"},
};
const std::vector<Trap> key_traps = {
    {"link for the parent", &AttackedWorld::key_link, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Data", L"SOFTWARE\\Victim"},
    {"link for the key", &AttackedWorld::key_link, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Data\\Suite",
     L"SOFTWARE\\Victim\\Suite"},
    {"link inside", &AttackedWorld::key_link, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Data\\Suite\\In",
     L"SOFTWARE\\Victim\\Suite\\In"},
};
const std::vector<Trap> user_traps = {
    {"link for the hive's root", &AttackedWorld::key_link, L"HKEY_USERS\\S-1-5-21-7", L"SOFTWARE\\Victim"},
    {"link for a key of the user's", &AttackedWorld::key_link, L"HKEY_USERS\\S-1-5-21-7\\Software",
     L"SOFTWARE\\Victim\\Software"},
    {"link for the key", &AttackedWorld::key_link, L"HKEY_USERS\\S-1-5-21-7\\Software\\Suite",
     L"SOFTWARE\\Victim\\Suite"},
    {"link inside", &AttackedWorld::key_link, L"HKEY_USERS\\S-1-5-21-7\\Software\\Suite\\In",
     L"SOFTWARE\\Victim\\Suite\\In"},
};
// What these make of the leaf's own place; what DeleteFile leaves open is in left_open_test.cpp.
const std::vector<Trap> leaf_traps = {
    {"symbolic link", &AttackedWorld::symbolic_link, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite\\a.txt"},
    {"symbolic link to a folder", &AttackedWorld::symbolic_link, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite"},
    {"junction", &AttackedWorld::junction, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite"},
    {"hard link", &AttackedWorld::hard_link, L"C:\\Data\\Suite\\a.txt", L"C:\\Victim\\Suite\\In\\b.txt"},
};

const std::vector<Attacked>& attacked() {
  static const std::vector<Attacked> rows = {
      {"DeleteFolder", {{"path", "C:\\Data\\Suite"}, {"recursive", "1"}}, folder_traps},
      {"DeleteFolder",
       {{"path", "C:\\Data\\Suite"}, {"recursive", "1"}, {"moveToTemp", "1"}, {"deleteAfterReboot", "1"}},
       folder_traps,
       true},
      {"DeleteRegKey",
       {{"base", "HKEY_LOCAL_MACHINE"}, {"subkey", "SOFTWARE\\Data\\Suite"}, {"recursive", "1"}},
       key_traps},
      {"DeleteRegValue",
       {{"base", "HKEY_LOCAL_MACHINE"}, {"subkey", "SOFTWARE\\Data\\Suite"}, {"value", "Name"}},
       key_traps},
      {"DeleteRegKey",
       {{"base", "HKEY_USERS"}, {"subkey", "S-1-5-21-7\\Software\\Suite"}, {"recursive", "1"}},
       user_traps},
      {"DeleteRegKey", {{"base", "HKEY_USERS"}, {"subkey", "*\\Software\\Suite"}, {"recursive", "1"}}, user_traps},
      {"DeleteRegValue", {{"base", "HKEY_USERS"}, {"subkey", "*\\Software\\Suite"}, {"value", "Name"}}, user_traps},
      {"DeleteFile", {{"pathFile", "C:\\Data\\Suite\\a.txt"}}, leaf_traps},
      {"DeleteFile", {{"pathFile", "C:\\Data\\Suite\\a.txt"}, {"renameFile", "1"}}, leaf_traps},
  };
  return rows;
}

support::NamedWorld layout_for(const Attacked& row) {
  support::NamedWorld layout = AttackedWorld::laid_out();
  if (row.held) layout.held(L"C:\\Data\\Suite\\In\\b.txt", 1, ports::file_share::read);
  return layout;
}

TEST(Links, WhatALinkPointsAtIsUntouchedWheneverItIsPlanted) {
  for (const Attacked& row : attacked()) {
    AttackedWorld alone(layout_for(row));
    const std::wstring untouched = alone.victim();
    EXPECT_EQ(alone.run_under(row.command, row.attributes), 0U) << row.command;
    ASSERT_EQ(alone.victim(), untouched);
    for (const Trap& trap : row.traps) {
      for (std::size_t moment = 1; moment <= alone.moments(); ++moment) {
        SCOPED_TRACE(std::string(row.command) + ", " + trap.kind + ", moment " + std::to_string(moment));
        AttackedWorld world(layout_for(row));
        (void)world.run_under(row.command, row.attributes,
                              {{moment, [&] { (world.*trap.plant)(trap.place, trap.target); }}});
        ASSERT_EQ(world.victim(), untouched);
      }
    }
  }
}

TEST(Links, AFolderThatIsALinkForAMomentOnlyLeadsNowhere) {
  const struct {
    const char* kind;
    std::wstring place;
    std::wstring target;
  } rows[] = {
      {"the parent", L"C:\\Data", L"C:\\Victim"},
      {"the folder", L"C:\\Data\\Suite", L"C:\\Victim\\Suite"},
      {"a folder inside", L"C:\\Data\\Suite\\In", L"C:\\Victim\\Suite\\In"},
  };
  const CommandWorld::Attributes attributes = {{"path", "C:\\Data\\Suite"}, {"recursive", "1"}};
  AttackedWorld alone;
  const std::wstring untouched = alone.victim();
  (void)alone.run_under("DeleteFolder", attributes);
  for (const auto& row : rows) {
    for (std::size_t moment = 1; moment <= alone.moments(); ++moment) {
      for (std::size_t after = 1; after <= 4; ++after) {
        SCOPED_TRACE(row.kind + (", moment " + std::to_string(moment)) + ", for " + std::to_string(after));
        AttackedWorld world;
        (void)world.run_under("DeleteFolder", attributes,
                              {{moment, [&] { world.junction_in_place(row.place, row.target); }},
                               {moment + after, [&] { world.take_back(row.place, row.target); }}});
        ASSERT_EQ(world.victim(), untouched);
      }
    }
  }
}

}  // namespace
}  // namespace attacks
