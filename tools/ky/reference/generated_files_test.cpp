#include "tools/ky/reference/generated_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "platform/desk/desk.h"
#include "tests/support/files_in.h"

namespace {

TEST(Reference, TheTreeHoldsWhatTheSchemaGives) {
  const std::vector<reference::GeneratedFile> files = reference::generated_files();
  for (const reference::GeneratedFile& file : files) {
    std::string bytes;
    const std::string failure = desk::read_file(desk::join(KY_SOURCE_FOLDER, file.path), 1 << 24, bytes);
    EXPECT_EQ(failure, "") << "run ./dev reference";
    EXPECT_TRUE(bytes == file.bytes) << file.path << " is out of date: run ./dev reference";
  }
  for (const std::string& path : support::files_in(desk::join(KY_SOURCE_FOLDER, reference::pages_folder), "")) {
    EXPECT_TRUE(std::any_of(files.begin(), files.end(), [&](const auto& each) { return path.ends_with(each.path); }))
        << path << " belongs to no command: remove it";
  }
}

TEST(Reference, EveryLinkOfAPageLeadsToAFile) {
  const std::regex link(R"(\]\(([^)#]+))");
  for (const reference::GeneratedFile& file : reference::generated_files()) {
    if (!file.path.ends_with(".md")) continue;
    for (std::sregex_iterator at(file.bytes.begin(), file.bytes.end(), link), end; at != end; ++at) {
      const std::string target = std::string(reference::pages_folder) + '/' + (*at)[1].str();
      EXPECT_TRUE(desk::exists(desk::join(KY_SOURCE_FOLDER, target))) << file.path << ": " << target;
    }
  }
}

}  // namespace
