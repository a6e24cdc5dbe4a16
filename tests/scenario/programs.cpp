#include "tests/scenario/programs.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "platform/desk/desk.h"

namespace scenario {

std::string output_folder(const std::string& name) {
  const std::string folder = desk_path(std::string(KY_BINARY_FOLDER) + "/scenario/" + name);
  EXPECT_EQ(desk::make_folders(folder), "");
  for (const char* const file : {"result.json", "log.txt", "machine.json"}) {
    std::remove(desk::join(folder, file).c_str());  // of an earlier test run
  }
  return folder;
}

std::string read_text(const std::string& path) {
  constexpr std::uintmax_t limit = 64u << 20;
  std::string text;
  EXPECT_EQ(desk::read_file(path, limit, text), "");
  return text;
}

}  // namespace scenario
