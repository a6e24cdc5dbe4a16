#include "tools/ky/rehearse/environment_keys.h"

#include <gtest/gtest.h>

namespace rehearsal {
namespace {

TEST(EnvironmentKeys, AreTheHostsPathsAndWhateverHoldsOne) {
  const std::map<std::string, GlobalValue> globals = {
      {"String_ProgramFilesPath", std::wstring(L"C:\\Program Files\\")},
      {"String_CommandLine", std::wstring(L"kysetup.exe /silent")},
      {"String_SystemPath", std::wstring()},
      {"String_InstallPath", std::wstring(L"C:\\Program Files\\Tavrine\\")},
      {"String_Tag", std::wstring(L"x64")},
      {"String_Emptied", std::monostate()},
      {"int_x64", 1},
  };
  const std::set<std::string> expected = {"String_ProgramFilesPath", "String_CommandLine", "String_SystemPath",
                                          "String_InstallPath"};
  EXPECT_EQ(environment_keys(globals), expected);
}

}  // namespace
}  // namespace rehearsal
