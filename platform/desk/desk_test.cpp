#include "platform/desk/desk.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/desk/input_file.h"
#include "tests/support/temporary_folder.h"

namespace {

class Desk : public testing::Test {
 protected:
  support::TemporaryFolder folder_;
};

TEST_F(Desk, AWrittenFileReadsBackByteForByteAndReplacesTheOldOne) {
  const std::string name = folder_ / "w\xC3\xB6lf.txt";
  EXPECT_EQ(desk::write_file(name, "the old text, which is longer"), "");
  EXPECT_EQ(desk::write_file(name, {"a\r\n\0\n", 5}), "");
  std::string bytes;
  EXPECT_EQ(desk::read_file(name, 5, bytes), "");
  EXPECT_EQ(bytes, std::string("a\r\n\0\n", 5));
  EXPECT_EQ(folder_.files(), 1U);
  EXPECT_EQ(desk::read_file(name, 4, bytes), name + ": is larger than 4 bytes");
}

TEST_F(Desk, AFailureIsOneLineWithPathAndReason) {
  std::string bytes;
  const std::string absent = folder_ / "absent";
  EXPECT_EQ(desk::read_file(absent, 10, bytes), absent + ": cannot be read: it does not exist");
  EXPECT_EQ(desk::read_file(folder_.path(), 10, bytes), folder_.path() + ": cannot be read: it is a folder");
  EXPECT_EQ(desk::write_file(folder_.path(), "x"), folder_.path() + ": cannot be written: it is a folder");
  const std::string below = desk::join(absent, "file");
  EXPECT_EQ(desk::write_file(below, "x"), below + ": cannot be written: it does not exist");
  ASSERT_EQ(desk::write_file(folder_ / "file", "x"), "");
  EXPECT_NE(desk::make_folders(desk::join(folder_ / "file", "folder")), "");
  EXPECT_EQ(folder_.files(), 1U);
}

TEST_F(Desk, FoldersAreMadeWithThoseAboveThemAndFilesRemovedWhereTheyAre) {
  const std::string deep = desk::join(folder_ / "a", "b");
  EXPECT_EQ(desk::make_folders(deep), "");
  EXPECT_EQ(desk::make_folders(deep), "");
  const std::string file = desk::join(deep, "file");
  EXPECT_EQ(desk::write_file(file, "x", desk::Access::owner_only), "");
  EXPECT_TRUE(desk::exists(file));
  EXPECT_EQ(desk::remove(file), "");
  EXPECT_EQ(desk::remove(file), "");
  EXPECT_FALSE(desk::exists(file));
}

TEST_F(Desk, AFileIsReadInPiecesWhileOthersWriteAndRemoveIt) {
  const std::string name = folder_ / "pieces";
  ASSERT_EQ(desk::write_file(name, "0123456789"), "");
  auto opened = std::make_unique<desk::InputFile>();
  desk::InputFile& file = *opened;
  ASSERT_EQ(file.open(name), "");
  std::ofstream(name, std::ios::app) << "abc";
  std::uint64_t length = 0;
  EXPECT_EQ(file.length(length), "");
  EXPECT_EQ(length, 13U);
  EXPECT_EQ(desk::remove(name), "");
  std::array<std::uint8_t, 8> bytes{};
  std::size_t size = 0;
  EXPECT_EQ(file.read(8, bytes, size), "");
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)), "89abc");
  EXPECT_EQ(file.read(2, std::span(bytes).first(3), size), "");
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 3), "234");
  EXPECT_EQ(file.read(99, bytes, size), "");
  EXPECT_EQ(size, 0U);
  // Wine keeps the name until the last reader lets go.
  opened.reset();
  EXPECT_FALSE(desk::exists(name));

  desk::InputFile none;
  EXPECT_EQ(none.open(name), name + ": cannot be read: it does not exist");
  desk::InputFile folder;
  EXPECT_EQ(folder.open(folder_.path()), folder_.path() + ": cannot be read: it is a folder");
}

TEST_F(Desk, AFolderTellsItsFilesByName) {
  for (const char* name : {"b", "a"}) ASSERT_EQ(desk::write_file(folder_ / name, ""), "");
  ASSERT_EQ(desk::make_folders(folder_ / "c"), "");
  std::vector<std::string> names;
  EXPECT_EQ(desk::list_files(folder_.path(), names), "");
  EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(desk::is_folder(folder_.path()));
  EXPECT_EQ(desk::list_files(folder_ / "d", names), folder_ / "d" + ": cannot be listed: it does not exist");
  EXPECT_EQ(desk::place_of(folder_ / "a").folder, folder_.path());
  EXPECT_EQ(desk::place_of("a").folder, "");
}

}  // namespace
