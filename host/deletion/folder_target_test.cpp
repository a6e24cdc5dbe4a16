#include "host/deletion/folder_target.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::vector<std::wstring> protected_folders = {L"C:\\Windows", L"C:\\Windows\\system32", L"C:\\Program Files",
                                                     L"D:\\a\\b\\Data"};

TEST(FolderTarget, AWholePathIsTakenApartFromTheDriveDown) {
  const std::vector<std::wstring> steps = {L"\\\\?\\C:\\", L"\\\\?\\C:\\Program Files", L"\\\\?\\C:\\Program Files\\T"};
  for (const wchar_t* const path : {L"C:\\Program Files\\T", L"C:\\Program Files\\T\\", L"C:/Program Files/T/"}) {
    const host::FolderTarget target = host::decide_folder(path, protected_folders);
    EXPECT_EQ(target.refusal, nullptr);
    EXPECT_EQ(target.steps, steps);
  }
  EXPECT_STREQ(host::shown(steps[1]), L"C:\\Program Files");
}

TEST(FolderTarget, WhatWouldBeADisasterIsRefused) {
  for (const wchar_t* const path : {
           L"",
           L"\\",
           L"C:",
           L"C:\\",
           L"C:\\\\",
           L"T",
           L"Tavrine\\T",
           L"\\Tavrine",
           L"C:Tavrine",
           L"\\\\server\\share\\T",
           L"\\\\?\\C:\\T",
           L"C:\\Windows",
           L"c:/windows/",
           L"C:\\WINDOWS\\System32\\",
           L"C:\\Program Files",
           L"D:\\a",
           L"D:\\a\\b",
           L"C:\\T\\..\\Windows",
           L"C:\\T\\.",
           L"C:\\T\\\\U",
           L"C:\\T\\\\",
           L"C:\\Windows.",
           L"C:\\Windows \\",
           L"C:\\T:stream",
       }) {
    const host::FolderTarget target = host::decide_folder(path, protected_folders);
    EXPECT_NE(target.refusal, nullptr) << std::string(path, path + std::wcslen(path));
    EXPECT_TRUE(target.steps.empty());
  }
}

TEST(FolderTarget, WhatLiesInAProtectedFolderOrBesideItMayGo) {
  for (const wchar_t* const path : {L"C:\\Windows\\Temp\\T", L"C:\\Windows2", L"C:\\Win", L"D:\\a\\c"}) {
    EXPECT_EQ(host::decide_folder(path, protected_folders).refusal, nullptr);
  }
}

}  // namespace
