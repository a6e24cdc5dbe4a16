#include "platform/desk/desk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

class Desk : public testing::Test {
 protected:
  void SetUp() override {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    folder_ = fs::temp_directory_path() / (std::string("ky-desk-") + test.name());
    fs::remove_all(folder_);
    fs::create_directory(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string in(const char* name) const { return desk::join(folder_.string(), name); }
  [[nodiscard]] std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  fs::path folder_;
};

TEST_F(Desk, AWrittenFileReadsBackByteForByteAndReplacesTheOldOne) {
  const std::string name =
      in("gr\xC3\xB6\xC3\x9F"
         "e.txt");
  EXPECT_EQ(desk::write_file(name, "the old text, which is longer"), "");
  EXPECT_EQ(desk::write_file(name, {"a\r\n\0\n", 5}), "");
  std::string bytes;
  EXPECT_EQ(desk::read_file(name, 5, bytes), "");
  EXPECT_EQ(bytes, std::string("a\r\n\0\n", 5));
  EXPECT_EQ(files(), 1U);
  EXPECT_EQ(desk::read_file(name, 4, bytes), name + ": is larger than 4 bytes");
}

TEST_F(Desk, AFailureIsOneLineWithPathAndReason) {
  std::string bytes;
  const std::string absent = in("absent");
  EXPECT_EQ(desk::read_file(absent, 10, bytes), absent + ": cannot be read: it does not exist");
  EXPECT_EQ(desk::read_file(folder_.string(), 10, bytes), folder_.string() + ": cannot be read: it is a folder");
  EXPECT_EQ(desk::write_file(folder_.string(), "x"), folder_.string() + ": cannot be written: it is a folder");
  const std::string below = desk::join(absent, "file");
  EXPECT_EQ(desk::write_file(below, "x"), below + ": cannot be written: it does not exist");
  ASSERT_EQ(desk::write_file(in("file"), "x"), "");
  EXPECT_NE(desk::make_folders(desk::join(in("file"), "folder")), "");
  EXPECT_EQ(files(), 1U);
}

TEST_F(Desk, FoldersAreMadeWithThoseAboveThemAndFilesRemovedWhereTheyAre) {
  const std::string deep = desk::join(in("a"), "b");
  EXPECT_EQ(desk::make_folders(deep), "");
  EXPECT_EQ(desk::make_folders(deep), "");
  const std::string file = desk::join(deep, "file");
  EXPECT_EQ(desk::write_file(file, "x", desk::Access::owner_only), "");
  EXPECT_TRUE(desk::exists(file));
  EXPECT_EQ(desk::remove_file(file), "");
  EXPECT_EQ(desk::remove_file(file), "");
  EXPECT_FALSE(desk::exists(file));
}

}  // namespace
