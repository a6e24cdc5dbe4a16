#include "diagnostics/reader/log_reader.h"

#include <gtest/gtest.h>

#include "diagnostics/rsa_blob.h"
#include "platform/desk/desk.h"
#include "platform/ports/script_cipher.h"
#include "tests/support/log_maker.h"
#include "tests/support/read_records.h"
#include "tests/support/temporary_folder.h"
#include "tools/ky/desk_engines.h"

namespace {

using namespace diagnostics::reader;

class LogReader : public testing::Test {
 protected:
  [[nodiscard]] static std::string golden(const std::string& name) {
    return KY_SOURCE_FOLDER "/tests/golden/logs/" + name;
  }
  support::ReadRecords read(const std::vector<std::string>& paths, bool by_thread = false) {
    settings_.by_thread = by_thread;
    support::ReadRecords sink;
    read_logs(paths, settings_, sink);
    return sink;
  }
  /// What is told, without the files' names.
  [[nodiscard]] static std::string told(const support::ReadRecords& read) {
    std::string text;
    for (const Problem& problem : read.problems) text += problem.line().substr(problem.file.size() + 2) + '\n';
    return text;
  }
  /// Thread and message up to a comma of all records but the first ones of threads.
  [[nodiscard]] static std::string summary(const support::ReadRecords& read) {
    std::string text;
    for (const std::string& line : read.lines) {
      if (line.find("====") == std::string::npos) text += line.substr(13, line.find(',') - 13) + "|";
    }
    return text;
  }
  [[nodiscard]] std::string start(const char* time, std::uint32_t thread) { return maker_.first_record(time, thread); }

  support::LogMaker maker_;
  support::TemporaryFolder folder_;
  Settings settings_{&maker_.keys()};
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
    EXPECT_EQ(timeline.text(), support::text_of(golden(expected))) << files[0];
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

TEST_F(LogReader, ATimelineKeepsTiesInTheOrderOfThreadsAndThreadsInTheirOwn) {
  std::string merged = maker_.header();
  std::vector<std::string> expected;
  for (std::uint32_t thread = 1; thread <= 3; ++thread) {
    merged += start("08:00:00:000", thread);
    for (int i = 0; i < 30; ++i) {
      merged +=
          maker_.record("08:00:00:00" + std::to_string(i / 10), std::to_wstring(thread) + L"/" + std::to_wstring(i));
    }
  }
  for (int moment = 0; moment < 3; ++moment) {
    for (int thread = 1; thread <= 3; ++thread) {
      for (int i = moment * 10; i < moment * 10 + 10; ++i) {
        const std::string id = std::to_string(thread);
        expected.push_back("08:00:00:00" + std::to_string(moment) + " " + id + " " + id + "/" + std::to_string(i));
      }
    }
  }
  std::vector<std::string> lines = read({folder_.write("a.7.kyinstall.v2.bin", merged)}).lines;
  std::erase_if(lines, [](const std::string& line) { return line.find("=") != std::string::npos; });
  EXPECT_EQ(lines, expected);
}

TEST_F(LogReader, DatesComeFromFirstRecordsAndFallsOfMoreThanHalfADay) {
  // Thread 1 passes midnight, thread 2 begins behind it, thread 3 has lost its first record, thread 4's clock is set
  // back.
  const std::string after =
      maker_.record("00:10:00:000", L"=========== Started logging for thread 2 (x) on 15.11.2025 =====");
  const std::vector<std::string> paths = {
      folder_.write("a.7.1.v2.bin", maker_.header() + start("23:50:00:000", 1) +
                                        maker_.record("11:50:00:000", L"half a day") +
                                        maker_.record("23:51:00:000", L"one") + maker_.record("00:20:00:000", L"one")),
      folder_.write("a.7.2.v2.bin", maker_.header() + after + maker_.record("00:30:00:000", L"two")),
      folder_.write("a.7.3.v2.bin", maker_.header() + maker_.record("00:15:00:000", L"three")),
      folder_.write("a.7.4.v2.bin", maker_.header() + start("23:55:00:000", 4) +
                                        maker_.record("23:40:00:000", L"back") +
                                        maker_.record("23:56:00:000", L"four"))};
  const support::ReadRecords all = read(paths);
  std::string order;
  for (std::size_t i = 0; i < all.lines.size(); ++i) {
    order += all.lines[i].substr(0, 5) + "/" + all.lines[i][13] + "/" + std::to_string(all.days[i] - 20406) + " ";
  }
  EXPECT_EQ(order,
            "23:50/1/0 11:50/1/0 23:51/1/0 23:55/4/0 23:40/4/0 23:56/4/0 "
            "00:10/2/1 00:15/3/1 00:20/1/1 00:30/2/1 ");
  EXPECT_EQ(all.told(), "");
}

TEST_F(LogReader, DamageIsToldWithItsPlaceAndWhatSurroundsItIsRead) {
  const std::string head = maker_.header() + start("08:00:00:000", 1);
  const std::string one = maker_.record("08:00:01:000", L"one");
  const std::string two = maker_.record("08:00:02:000", L"two, which is as long as it needs to be for three blocks");
  const std::string three = maker_.record("08:00:03:000", L"three");
  std::string spoilt = two;
  spoilt[10] ^= 1;
  const std::string nine = start("08:00:01:500", 9);
  const std::string at = std::to_string(head.size() + one.size());
  const struct {
    const char* what;
    std::string records;
    std::string messages;  // after the first record's
    std::string told;
  } cases[] = {
      {"a spoilt record", one + spoilt + three, "1 one|1 three|", "offset " + at + ": this record cannot be read\n"},
      {"missing bytes", one + two.substr(0, 20) + three, "1 one|1 three|",
       "offset " + at + ": 20 bytes passed over up to the next record\n"},
      {"alien bytes", one + std::string(5000, 'z') + two + three, "1 one|1 two|1 three|",
       "offset " + at + ": 5000 bytes passed over up to the next record\n"},
      {"two lengths, then two texts",
       one + two.substr(0, 4) + three.substr(0, 4) + two.substr(4) + three.substr(4) + one,
       "1 one|1 two|1 three|1 one|",
       "offset " + at +
           ": the length field is damaged; the record was found without it\n"
           "offset " +
           std::to_string(head.size() + one.size() + 4 + two.size()) +
           ": the length field is damaged; the record was found without it\n"},
      {"zeros at the end", one + std::string(100, '\0'), "1 one|",
       "offset " + at + ": 100 bytes passed over; no record follows them\n"},
      {"a second key header", one + maker_.header() + two, "1 one|1 two|", ""},
      {"a thread whose first record is lost", three + nine.substr(0, 30) + one + two, "1 three|0 one|0 two|",
       "offset " + std::to_string(head.size() + three.size()) + ": 30 bytes passed over up to the next record\n"},
  };
  for (const auto& [what, records, messages, expected] : cases) {
    const support::ReadRecords all = read({folder_.write("a.7.kyinstall.v2.bin", head + records)}, true);
    EXPECT_EQ(summary(all), messages) << what;
    EXPECT_EQ(told(all), expected) << what;
  }
  // In a timeline the thread without a name stands where its times belong.
  EXPECT_EQ(summary(read({folder_ / "a.7.kyinstall.v2.bin"})), "0 one|0 two|1 three|");
}

TEST_F(LogReader, ADamagedKeyHeaderBorrowsTheKeyOfAnotherFileOfItsRun) {
  const std::string whole = maker_.header() + start("08:00:00:000", 1) + maker_.record("08:00:01:000", L"one");
  const std::string sibling = folder_.write("a.7.2.v2.bin", maker_.header() + start("08:00:00:000", 2));
  for (const std::size_t at : {0U, 3U, 4U, 70U, 131U}) {
    std::string bytes = whole;
    bytes[at] ^= 1;
    const std::string path = folder_.write("a.7.1.v2.bin", bytes);
    // The sibling need not be asked for.
    for (const std::vector<std::string>& paths : {std::vector<std::string>{path}, {path, sibling}}) {
      const support::ReadRecords all = read(paths);
      EXPECT_EQ(summary(all), "1 one|") << at;
      ASSERT_EQ(all.problems.size(), 1U) << at;
      EXPECT_EQ(all.problems[0].kind, ProblemKind::key_header) << at;
    }
  }
  EXPECT_EQ(desk::remove(sibling), "");
  EXPECT_EQ(told(read({folder_ / "a.7.1.v2.bin"})),
            "offset 0: the private key does not open it: it is another log's, or the key header is damaged, and no "
            "other file of the run is there to tell\n");
  EXPECT_EQ(told(read({folder_.write("a.7.1.v2.bin", whole.substr(0, 131))})),
            "offset 0: cut short: the file ends inside its key header\n");
  EXPECT_EQ(told(read({folder_.write("a.7.1.v2.bin", "")})),
            "offset 0: cut short: the file ends inside its key header\n");
}

TEST_F(LogReader, AWrongKeyIsToldApartFromDamage) {
  const std::string bytes = maker_.header() + start("08:00:00:000", 1) + maker_.record("08:00:01:000", L"one");
  const std::vector<std::string> paths = {folder_.write("a.7.1.v2.bin", bytes), folder_.write("a.7.2.v2.bin", bytes)};
  ports::RsaPair other;
  workbench::DeskEngines desk;
  ASSERT_TRUE(desk.engines().key_maker().rsa_pair(1024, other));
  KeyOpener keys(maker_.cng());
  ASSERT_TRUE(keys.use_algorithm(L"AES"));
  ASSERT_TRUE(keys.use_private_key(diagnostics::private_key_blob(other.private_key)));
  settings_.keys = &keys;
  const std::string another =
      "offset 0: the private key is another log's: it does not open the key that all files of the run hold\n";
  EXPECT_EQ(told(read(paths)), another + another);
  settings_.keys = nullptr;
  EXPECT_EQ(told(read({paths[0]})), "it is sealed, and no private key was given\n");

  // A key of 24 bytes is one of either algorithm.
  support::LogMaker triple(L"3DES", 24);
  const std::string path = folder_.write(
      "b.7.1.v2.bin", triple.header() + triple.first_record("08:00:00:000", 1) + triple.record("08:00:01:000", L"one"));
  settings_.keys = &triple.keys();
  EXPECT_EQ(summary(read({path})), "1 one|");
  settings_.keys = &maker_.keys();
  const support::ReadRecords all = read({path});
  ASSERT_FALSE(all.problems.empty());
  EXPECT_EQ(all.problems.back().kind, ProblemKind::wrong_key);
  EXPECT_EQ(all.lines.size(), 0U);

  KeyOpener none(maker_.cng());
  EXPECT_FALSE(none.use_algorithm(L"ROT13"));
  EXPECT_FALSE(none.use_private_key(std::vector<std::uint8_t>(20)));
}

TEST_F(LogReader, AThreadInAMergedFileAndInItsOwnIsReadOnce) {
  const std::string one = start("08:00:00:000", 1) + maker_.record("08:00:01:000", L"one");
  const std::string two = start("08:00:00:000", 2) + maker_.record("08:00:01:000", L"two");
  const std::string merged = folder_.write("a.tag7.kyinstall.v2.bin", maker_.header() + one + two);
  const std::string own = folder_.write("a.7.1.v2.bin", maker_.header() + one);
  folder_.write("a.8.1.v2.bin", maker_.header() + one);
  folder_.write("b.7.1.v2.bin", maker_.header() + one);
  folder_.write("a.7.3.v2.bin", maker_.header() + start("08:00:00:000", 3) + maker_.record("08:00:01:000", L"three"));
  const std::vector<std::string> run = files_of_run(merged);
  EXPECT_EQ(run.size(), 3U);
  support::ReadRecords all = read(run);
  EXPECT_EQ(summary(all), "1 one|2 two|3 three|");
  EXPECT_EQ(told(all), "its records are read from the merged file\n");
  // A longer one was cut while it was merged.
  folder_.write("a.7.1.v2.bin", maker_.header() + one + maker_.record("08:00:02:000", L"more") + maker_.header());
  EXPECT_EQ(summary(read(files_of_run(own))), "1 one|2 two|3 three|1 more|");
  EXPECT_EQ(files_of_folder(folder_.path()).size(), 5U);
  EXPECT_EQ(files_of_run("no/such.file"), std::vector<std::string>{"no/such.file"});
}

}  // namespace
