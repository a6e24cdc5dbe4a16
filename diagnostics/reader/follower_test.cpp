#include "diagnostics/reader/follower.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/desk/desk.h"
#include "tests/support/log_maker.h"
#include "tests/support/read_records.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace diagnostics::reader;

class LogFollower : public testing::Test {
 protected:
  /// Adds to a file, as a log grows.
  void write(const char* name, std::string_view bytes) {
    std::ofstream(folder_ / name, std::ios::binary | std::ios::app) << bytes;
  }
  void remove(const char* name) { ASSERT_EQ(desk::remove(folder_ / name), ""); }
  /// Thread and message of what has come since the last call.
  std::string fresh() {
    std::string text;
    for (; seen_ < sink_.lines.size(); ++seen_) text += sink_.lines[seen_].substr(13, 7) + "|";
    return text;
  }
  std::string record(const char* time, const wchar_t* message) { return maker_.record(time, message); }

  support::LogMaker maker_;
  support::TemporaryFolder folder_;
  support::ReadRecords sink_;
  Settings settings_{&maker_.keys()};
  std::size_t seen_ = 0;
};

TEST_F(LogFollower, RecordsComeAsTheyAreWrittenUntilTheRunIsMerged) {
  const std::string one = maker_.first_record("08:00:00:000", 1);
  const std::string two = maker_.first_record("08:00:00:500", 2);
  const std::string three = maker_.first_record("08:00:03:000", 3) + record("08:00:04:000", L"three");
  std::string first = maker_.header() + one;
  write("a.7.1.v2.bin", first.substr(0, 50));
  write("a.6.1.v2.bin", "an older run");
  Follower follower(folder_.path(), settings_, sink_);
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(fresh(), "");
  write("a.7.1.v2.bin", first.substr(50));
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(fresh(), "1 =====|");
  // A record that is still being written, and a second thread.
  const std::string more = record("08:00:01:000", L"more1") + record("08:00:02:000", L"more2");
  write("a.7.1.v2.bin", more.substr(0, more.size() - 20));
  write("a.7.2.v2.bin", maker_.header() + two);
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(fresh(), "2 =====|1 more1|");
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(fresh(), "");
  write("a.7.1.v2.bin", more.substr(more.size() - 20));
  // A third thread comes and goes unseen; all are merged.
  write("a.7.kyinstall.v2.bin", maker_.header() + one + more + two + three);
  remove("a.7.1.v2.bin");
  remove("a.7.2.v2.bin");
  // Wine keeps the name of a removed file until its reader lets go; the follower's patience ends all the same.
  for (int polls = 0; follower.poll(); ++polls) ASSERT_LT(polls, 100);
  EXPECT_EQ(fresh(), "1 more2|3 =====|3 three|");
  EXPECT_EQ(sink_.told(), "");
}

TEST_F(LogFollower, AThreadFileThatStaysBehindDoesNotKeepItWaiting) {
  const std::string one = record("08:00:01:000", L"one");
  write("a.7.1.v2.bin", maker_.header() + maker_.first_record("08:00:00:000", 1) + one + one.substr(0, 40));
  write("a.7.kyinstall.v2.bin", maker_.header());
  Follower follower(folder_ / "a.7.1.v2.bin", settings_, sink_);
  int polls = 0;
  while (polls < 100 && follower.poll()) ++polls;
  EXPECT_LE(polls, Follower::patience);
  EXPECT_EQ(fresh(), "1 =====|1 one|");
  ASSERT_EQ(sink_.problems.size(), 1U);
  EXPECT_EQ(sink_.problems[0].kind, ProblemKind::cut_short);
}

TEST_F(LogFollower, LinesOfTheFallBackFormAreFollowedToo) {
  write("a.7.1.bin", "\xEF\xBB\xBF[08:00:00:000] \r\n[08:00:01:0");
  Follower follower(folder_.path(), settings_, sink_);
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(sink_.text(), "08:00:00:000 1 \n");
  write("a.7.1.bin", "00] 5\r\n");
  EXPECT_TRUE(follower.poll());
  EXPECT_EQ(sink_.text(), "08:00:00:000 1 \n08:00:01:000 1 5\n");
  EXPECT_EQ(sink_.told(), "");
}

}  // namespace
