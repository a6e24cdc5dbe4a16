#include "platform/machine/file_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace machine {
namespace {

constexpr std::size_t piece = 64 * 1024;

TEST(FileBytes, AreAsThoseOfOneVectorAcrossPieces) {
  FileBytes bytes;
  std::vector<std::uint8_t> expected;
  std::uint8_t next = 0;
  const auto run = [&next](std::size_t count) {
    std::vector<std::uint8_t> made(count);
    for (std::uint8_t& byte : made) byte = ++next;
    return made;
  };
  const auto same = [&](const char* after) {
    ASSERT_EQ(bytes.size(), expected.size()) << after;
    EXPECT_EQ(bytes.empty(), expected.empty()) << after;
    EXPECT_TRUE(bytes.all() == expected) << after;
    if (!expected.empty()) {
      EXPECT_EQ(bytes[expected.size() - 1], expected.back()) << after;
    }
  };
  same("nothing");
  for (const std::size_t size : {std::size_t{3}, piece - 3, std::size_t{1}, 2 * piece, std::size_t{450}}) {
    const auto more = run(size);
    bytes.append(more);
    expected.insert(expected.end(), more.begin(), more.end());
    same("append");
  }
  for (const std::size_t at : {std::size_t{0}, piece - 5, expected.size() - 2, expected.size() + 7 + piece}) {
    const auto over = run(10);
    bytes.write(at, over);
    expected.resize(std::max(expected.size(), at + over.size()));
    std::copy(over.begin(), over.end(), expected.begin() + static_cast<std::ptrdiff_t>(at));
    same("write");
  }
  for (const std::size_t size : {3 * piece + 1, 2 * piece, 2 * piece - 1, piece, 2 * piece + 9, std::size_t{0}}) {
    bytes.resize(size);
    expected.resize(size);
    same("resize");
  }
}

TEST(FileBytes, AreZerosPastTheirEnd) {
  const FileBytes bytes(std::vector<std::uint8_t>(piece + 1, 7));
  std::vector<std::uint8_t> got(4, 9);
  bytes.read(piece - 1, got);
  EXPECT_EQ(got, (std::vector<std::uint8_t>{7, 7, 0, 0}));
  bytes.read(3 * piece, got);
  EXPECT_EQ(got, std::vector<std::uint8_t>(4));
}

}  // namespace
}  // namespace machine
