#include "installer/desktop/commands/files/deletefilecommand.h"

#include "tests/support/command_fixture.h"
#include "tests/support/file_names.h"

namespace ky {
namespace {

class DeleteFile : public CommandFixture {
 protected:
  DeleteFile() {
    put("Folder", L"C:\\Work\\");
    EXPECT_TRUE(system.files.create_folder(L"C:\\Work"));
  }

  std::wstring temp() {
    wchar_t folder[260] = {};
    EXPECT_NE(system.files.temp_folder(folder), 0u);
    return folder;
  }

  /// Names in the temporary folder.
  std::vector<std::wstring> in_temp() { return support::file_names(system, temp() + L"*"); }
};

TEST_F(DeleteFile, DeletesAReadOnlyFileAndLogsWithoutTheUsualFrame) {
  make_file(L"C:\\Work\\a.txt", ports::file_attribute::read_only | ports::file_attribute::hidden);
  const auto command = run("DeleteFile", {{"pathFile", "[Folder]a.txt"}});
  EXPECT_FALSE(system.files.exists(L"C:\\Work\\a.txt"));
  EXPECT_FALSE(command->executed);
  EXPECT_EQ(log,
            (std::vector<std::wstring>{L"Executing DeleteFile command\n", L"Rough path file: [Folder]a.txt\n",
                                       L"Preparing to delete file C:\\Work\\a.txt \n", L"Finished delete file\n"}));
  EXPECT_EQ(command->GetNextIndex(), 6);
  EXPECT_EQ(log.back(), L"[InstallCommand] Warning: GetNextIndex called before Execute\n");
}

TEST_F(DeleteFile, WhatIsNotThereGivesOneErrorLineAndNoTemporaryFile) {
  const struct {
    const char* path;
    const wchar_t* line;
  } rows[] = {{"[Folder]none.txt", L"DeleteFile error: 2\n"}, {"[Folder]none\\b.txt", L"DeleteFile error: 3\n"}};
  for (const auto& row : rows) {
    log.clear();
    run("DeleteFile", {{"pathFile", row.path}, {"renameFile", "1"}});
    EXPECT_EQ(log.at(3), row.line);
    EXPECT_EQ(log.size(), 5u);
  }
  EXPECT_TRUE(in_temp().empty());
}

TEST_F(DeleteFile, AnUndefinedVariableLeavesAnEmptyPathThatDeletesNothing) {
  const auto command = run("DeleteFile", {{"pathFile", "[None]a.txt"}});
  EXPECT_EQ(log.at(2), L"Preparing to delete file  \n");
  EXPECT_EQ(log.at(4), L"Finished delete file\n");
}

TEST_F(DeleteFile, AHeldFileIsMovedAsideAndBookedOnlyWhenToldTo) {
  const struct {
    const char* rename;
    bool moved;
  } rows[] = {{nullptr, false}, {"0", false}, {"2", false}, {"01", true}};
  for (const auto& row : rows) {
    log.clear();
    make_file(L"C:\\Work\\held.txt");
    // Others may rename it, but its deletion has to wait for the handle.
    const ports::Handle holder =
        open(L"C:\\Work\\held.txt", ports::Disposition::open_existing, ports::file_share::read);
    Attributes attributes = {{"pathFile", "[Folder]held.txt"}};
    if (row.rename != nullptr) attributes.emplace_back("renameFile", row.rename);
    run("DeleteFile", attributes);
    EXPECT_EQ(log.at(3), L"DeleteFile error: 32\n");
    if (row.moved) {
      const std::wstring aside = temp() + in_temp().at(0);
      EXPECT_TRUE(in_temp().at(0).starts_with(L"hel"));
      EXPECT_EQ(log.at(4), L"CDeleteFileCommand MoveFile C:\\Work\\held.txt to " + aside + L" res = 0\n");
      EXPECT_EQ(log.at(5), L"CDeleteFileCommand MoveFileEx 1\n");
    } else {
      EXPECT_EQ(log.size(), 5u);
      EXPECT_TRUE(in_temp().empty());
    }
    EXPECT_TRUE(system.waits.close(holder));
    system.files.remove(L"C:\\Work\\held.txt");
  }
}

TEST_F(DeleteFile, WithoutATemporaryFolderItSaysSoAndGoesOn) {
  make_file(L"C:\\Work\\held.txt");
  std::wstring folder = temp();
  folder.pop_back();
  ASSERT_TRUE(system.files.remove_folder(folder.c_str()));
  const ports::Handle holder = open(L"C:\\Work\\held.txt", ports::Disposition::open_existing, ports::file_share::read);
  run("DeleteFile", {{"pathFile", "[Folder]held.txt"}, {"renameFile", "1"}});
  EXPECT_EQ(log.at(4), L"5: CDeleteFileCommand Error: GetTempFileName failed.\n");
  EXPECT_EQ(log.at(5), L"Finished delete file\n");
  EXPECT_TRUE(system.waits.close(holder));
}

TEST_F(DeleteFile, AMissingPathEndsTheLoad) {
  EXPECT_EQ(load("DeleteFile", {{"renameFile", "1"}}).result, 1u);
}

class PathExists : public CommandFixture {};

TEST_F(PathExists, TellsFilesAndFoldersFromWhatIsNotThere) {
  ASSERT_TRUE(system.files.create_folder(L"C:\\Work"));
  put("Folder", L"C:\\Work");
  put("Found", 7);
  run("PathExists", {{"path", "[Folder]"}, {"variable", "Found"}});
  EXPECT_EQ(get_int("Found"), 1);
  EXPECT_EQ(log, (std::vector<std::wstring>{L"5: PathExists Begin execute.\n", L"[PathExists] Path='C:\\Work'\n",
                                            L"5: PathExists End execute. Next command 6.\n"}));
  log.clear();
  // An undefined variable stays and is looked for as it stands.
  run("PathExists", {{"path", "C:\\[None]"}, {"variable", "Found"}});
  EXPECT_EQ(get_int("Found"), 0);
  EXPECT_EQ(log.at(2), L"[PathExists] Path='C:\\[None]' doesn't exist. GetLastError: '2'\n");
}

TEST_F(PathExists, AVariableOf235CharactersPassesAndOneOf236DoesNot) {
  const std::string longest(235, 'v');
  put(longest, 7);
  run("PathExists", {{"path", "C:\\none"}, {"variable", longest}});
  EXPECT_EQ(get_int(longest), 0);
  log.clear();
  run("PathExists", {{"path", "C:\\none"}, {"variable", longest + "v"}});
  EXPECT_EQ(log.at(1), L"[PathExists] Cannot create integer variable name\n");
  EXPECT_EQ(log.size(), 3u);
}

TEST_F(PathExists, AMissingAttributeEndsTheLoad) {
  EXPECT_EQ(load("PathExists", {{"variable", "a"}}).result, 1u);
  EXPECT_EQ(load("PathExists", {{"path", "a"}}).result, 1u);
}

}  // namespace
}  // namespace ky
