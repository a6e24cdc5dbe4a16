#include "diagnostics/reader/log_reader.h"

#include <gtest/gtest.h>

#include "platform/desk/desk.h"
#include "tests/support/log_maker.h"
#include "tests/support/read_records.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace diagnostics::reader;

class LogReader : public testing::Test {
 protected:
  [[nodiscard]] static std::string golden(const std::string& name) {
    return KY_SOURCE_FOLDER "/tests/golden/logs/" + name;
  }
  [[nodiscard]] static std::string text_of(const std::string& path) {
    std::string text;
    EXPECT_EQ(desk::read_file(path, 100'000, text), "");
    return text;
  }
  std::string write(const char* name, const std::string& bytes) {
    EXPECT_EQ(desk::write_file(folder_ / name, bytes), "");
    return folder_ / name;
  }
  support::ReadRecords read(const std::vector<std::string>& paths, bool by_thread = false) {
    support::ReadRecords sink;
    Settings settings;
    settings.keys = &maker_.keys();
    settings.by_thread = by_thread;
    read_logs(paths, settings, sink);
    return sink;
  }

  support::LogMaker maker_;
  support::TemporaryFolder folder_;
};

TEST_F(LogReader, TheGoldenLogsAreReadInEitherFormFromMergedAndFromThreadFiles) {
  const struct {
    std::vector<std::string> files;
    const char* expected;
  } cases[] = {
      {{"golden.1763128000.kyinstall.v2.bin"}, "sealed-timeline.txt"},
      {{"golden.1763128001.4343.v2.bin", "golden.1763128001.4242.v2.bin"}, "sealed-timeline.txt"},
      {{"golden.1763128002.kyinstall.bin"}, "fall-back-timeline.txt"},
      {{"golden.1763128003.4343.bin", "golden.1763128003.4242.bin"}, "fall-back-timeline.txt"},
  };
  for (const auto& [files, expected] : cases) {
    std::vector<std::string> paths;
    for (const std::string& file : files) paths.push_back(golden(file));
    const support::ReadRecords timeline = read(paths);
    EXPECT_EQ(timeline.text(), text_of(golden(expected))) << files[0];
    EXPECT_EQ(timeline.told(), "");
    EXPECT_EQ(timeline.days.front(), 20406);
    EXPECT_EQ(timeline.days.back(), 20407);

    const support::ReadRecords by_thread = read(paths, true);
    ASSERT_EQ(by_thread.lines.size(), 12U);
    EXPECT_NE(by_thread.lines[6].find("00:00:04:000 4242"), std::string::npos) << by_thread.text();
    EXPECT_NE(by_thread.lines[7].find("23:59:59:000 4343"), std::string::npos);
    EXPECT_EQ(by_thread.told(), "");
  }
}

}  // namespace
