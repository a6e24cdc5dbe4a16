#include "host/deletion/folder_removal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/current_store.h"
#include "host/deletion/folder_target.h"
#include "installer/desktop/commands/base/global_data.h"
#include "platform/ports/codes.h"
#include "platform/ports/environment.h"
#include "tests/support/bare_machine.h"

namespace {

namespace code = ports::code;

/// A folder with a file, a folder in it, and a neighbour that only links lead to.
class FolderRemovalTest : public testing::Test, public support::BareMachine {
 protected:
  FolderRemovalTest() {
    for (const wchar_t* const path : {L"C:\\T", L"C:\\T\\In", L"C:\\T\\In\\Deep", L"C:\\Other", L"C:\\Other\\Sub"}) {
      folder(path);
    }
    for (const wchar_t* const path : {L"C:\\T\\a", L"C:\\T\\In\\b", L"C:\\T\\In\\Deep\\c", L"C:\\Other\\Sub\\o"}) {
      file(path);
    }
    ports::bind(system);
    ky::BindStore(&host::get_current, &host::put_current);
  }
  ~FolderRemovalTest() override { ports::unbind(); }

  ports::ErrorCode remove(const wchar_t* path, const host::FolderRemovalOptions& options) {
    std::vector<std::wstring> protected_folders;
    EXPECT_TRUE(host::find_protected_folders(system, protected_folders));
    const host::FolderTarget target = host::decide_folder(path, protected_folders);
    EXPECT_EQ(target.refusal, nullptr);
    return host::FolderRemoval(system, options, protected_folders).remove(target.steps);
  }
};

constexpr host::FolderRemovalOptions only_empty{};
constexpr host::FolderRemovalOptions recursive{true, false, false};

TEST_F(FolderRemovalTest, AFolderGoesWithAllThatIsInItAndNothingElse) {
  EXPECT_TRUE(system.files.set_attributes(L"C:\\T\\In\\b", ports::file_attribute::read_only));
  EXPECT_TRUE(system.files.set_attributes(L"C:\\T\\In", ports::file_attribute::read_only));
  EXPECT_EQ(remove(L"C:\\T", recursive), code::success);
  EXPECT_FALSE(there(L"C:\\T"));
  EXPECT_TRUE(there(L"C:\\Other\\Sub\\o"));
}

TEST_F(FolderRemovalTest, WithoutTheFlagOnlyAnEmptyFolderGoes) {
  EXPECT_EQ(remove(L"C:\\T\\In", {false, true, true}), code::directory_not_empty);
  EXPECT_TRUE(there(L"C:\\T\\In\\Deep\\c"));
  EXPECT_TRUE(machine.state().pending_moves.empty()) << "a full folder is not booked";
  folder(L"C:\\T\\Empty");
  EXPECT_EQ(remove(L"C:\\T\\Empty", only_empty), code::success);
  EXPECT_FALSE(there(L"C:\\T\\Empty"));
}

TEST_F(FolderRemovalTest, WhatIsAbsentIsASuccess) {
  EXPECT_EQ(remove(L"C:\\Nothing", recursive), code::success);
  EXPECT_EQ(remove(L"C:\\Nothing\\Below", recursive), code::success);
  EXPECT_EQ(remove(L"C:\\T\\a\\Below", recursive), code::success) << "a file stands where a folder would";
  EXPECT_EQ(remove(L"C:\\T\\a", recursive), code::directory_name_invalid);
  EXPECT_TRUE(there(L"C:\\T\\a"));
}

TEST_F(FolderRemovalTest, LinksInsideGoAndWhatTheyPointAtStays) {
  link(L"C:\\T\\junction", L"C:\\Other", true);
  link(L"C:\\T\\In\\link", L"C:\\Other\\Sub\\o", false);
  EXPECT_EQ(remove(L"C:\\T", recursive), code::success);
  EXPECT_FALSE(there(L"C:\\T"));
  EXPECT_TRUE(there(L"C:\\Other\\Sub\\o"));
}

TEST_F(FolderRemovalTest, ALinkThatIsTheTargetGoesItself) {
  link(L"C:\\L", L"C:\\Other", true);
  EXPECT_EQ(remove(L"C:\\L", recursive), code::success);
  EXPECT_FALSE(there(L"C:\\L"));
  EXPECT_TRUE(there(L"C:\\Other\\Sub\\o"));
}

TEST_F(FolderRemovalTest, ALinkAmongTheAncestorsKeepsEverything) {
  link(L"C:\\L", L"C:\\Other", true);
  EXPECT_EQ(remove(L"C:\\L\\Sub", recursive), code::stopped_on_symlink);
  EXPECT_TRUE(there(L"C:\\Other\\Sub\\o"));
}

TEST_F(FolderRemovalTest, AProtectedFolderUnderAnotherSpellingIsRefused) {
  const std::wstring windows = system.environment.folder(ports::KnownFolder::windows);
  const std::vector<std::wstring> protected_folders = {windows};
  const std::vector<std::wstring> steps = {L"\\\\?\\C:\\", L"\\\\?\\" + windows};
  EXPECT_EQ(host::FolderRemoval(system, recursive, protected_folders).remove(steps), code::invalid_parameter);
  EXPECT_TRUE(there(windows.c_str()));
}

TEST_F(FolderRemovalTest, WhatIsLockedStaysAndTheRestGoes) {
  const ports::Handle held = hold(L"C:\\T\\In\\b", ports::file_share::read);
  EXPECT_EQ(remove(L"C:\\T", recursive), code::sharing_violation);
  EXPECT_TRUE(there(L"C:\\T\\In\\b"));
  EXPECT_FALSE(there(L"C:\\T\\In\\Deep"));
  EXPECT_FALSE(there(L"C:\\T\\a"));
  EXPECT_TRUE(system.waits.close(held));
  EXPECT_EQ(remove(L"C:\\T", recursive), code::success) << "every handle of the first try is closed";
}

TEST_F(FolderRemovalTest, WhatIsLockedIsBookedBeforeTheFoldersAroundIt) {
  const ports::Handle held = hold(L"C:\\T\\In\\b", ports::file_share::read);
  EXPECT_EQ(remove(L"C:\\T", {true, true, false}), code::success);
  EXPECT_EQ(machine.state().pending_moves.size(), 3U);
  EXPECT_TRUE(there(L"C:\\T\\In\\b"));
  EXPECT_TRUE(system.waits.close(held));
}

TEST_F(FolderRemovalTest, AFileThatCannotGoIsMovedAway) {
  // Others may rename it, but whoever asks to delete it must share reading, which the holder does not allow.
  const ports::Handle held = hold(L"C:\\T\\In\\b", ports::file_share::erase);
  EXPECT_EQ(remove(L"C:\\T", {true, false, true}), code::success);
  EXPECT_FALSE(there(L"C:\\T"));
  EXPECT_TRUE(machine.state().pending_moves.empty());
  EXPECT_TRUE(system.waits.close(held));
}

}  // namespace
