#include "diagnostics/logger_api.h"

#include <memory>
#include <optional>

#include "diagnostics/log_format.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "installer/utils/base/strings/format.h"
#include "platform/faults/faulty_system.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"
#include "tests/support/bare_machine.h"
#include "tests/support/log_files.h"

namespace ky {
namespace {

using support::Bytes;
namespace log_format = diagnostics::log_format;

Bytes bytes_of(std::string_view text) {
  return {text.begin(), text.end()};
}

class Logger : public testing::Test {
 protected:
  Logger() { ports::bind(system); }
  ~Logger() override {
    log.reset();
    ports::unbind();
  }

  /// A new log of the named form, which the calling thread has started.
  void start(bool sealed, bool is_main = false, const wchar_t* description = nullptr) {
    make(sealed);
    log->StartThreadLog(description, is_main);
  }
  void make(bool sealed) {
    log.reset(new CLoggerApi);
    if (sealed) {
      EXPECT_TRUE(log->SetupEncryption(L"AES", 256));
    } else {
      log->SetXorKey(log_format::fall_back_key.data());
    }
    log->SetLabel(L"setup.");
  }

  [[nodiscard]] std::wstring path(const std::wstring& middle, bool sealed) const {
    return L"C:\\ProgramData\\setup." + std::to_wstring(start_time) + L"." + middle + (sealed ? L".v2" : L"") + L".bin";
  }
  [[nodiscard]] Bytes file(std::uint32_t thread, bool sealed) const {
    return support::read_whole(system, path(std::to_wstring(thread), sealed));
  }
  [[nodiscard]] Bytes merged(bool sealed) const { return support::read_whole(system, path(L"kyinstall", sealed)); }
  [[nodiscard]] std::vector<std::wstring> lines(const Bytes& sealed) const {
    return support::take_apart(system.cng, sealed).lines;
  }
  /// The head of every line: the machine's clock stands.
  [[nodiscard]] std::wstring stamp() const {
    const ports::LocalTime now = system.clock.local();
    return base::strings::format(L"[%02ld:%02ld:%02ld:%03ld] ", std::int32_t{now.hour}, std::int32_t{now.minute},
                                 std::int32_t{now.second}, std::int32_t{now.millisecond});
  }
  [[nodiscard]] std::wstring first_line(std::uint32_t thread, const std::wstring& description) const {
    const ports::LocalTime now = system.clock.local();
    return stamp() + base::strings::format(
                         L"=========== Started logging for thread %u (%s) on %02ld.%02ld.%02ld ===========\n", thread,
                         description.c_str(), std::int32_t{now.day}, std::int32_t{now.month}, std::int32_t{now.year});
  }
  void write(const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    log->WriteFormatted(format, arguments);
    va_end(arguments);
  }

  support::BareMachine desk;
  const ports::System& system = desk.system;
  const std::uint32_t self = system.threads.current_id();
  const std::int64_t start_time = system.clock.seconds_since_1970();
  std::unique_ptr<CLoggerApi, Releaser> log;
};

TEST_F(Logger, ASealedFileIsAWrappedKeyAndRecordsOfWholeBlocks) {
  start(true, false, L"Tried");
  write(L"%i: %s %S\n", 5, L"wide", "narrow");
  log->WriteLine(L"");
  log->WriteLine(nullptr);
  write(L"%s", L"");
  log->WriteLine(L"\u00E9\xD83D\xDE00 \xD800 unpaired\n");
  log->WriteLine(L"again");
  log->WriteLine(L"again");
  const Bytes bytes = file(self, true);
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{128, 0, 0, 0}));
  const support::SealedLog read = support::take_apart(system.cng, bytes);
  EXPECT_EQ(read.wrapped.size(), 128U);
  EXPECT_EQ(Bytes(read.blob.begin(), read.blob.begin() + 12), (Bytes{'K', 'D', 'B', 'M', 1, 0, 0, 0, 32, 0, 0, 0}));
  EXPECT_EQ(read.blob.size(), 44U);
  EXPECT_EQ(read.lines, (std::vector<std::wstring>{first_line(self, L"Tried"), stamp() + L"5: wide narrow\n\n",
                                                   stamp() + L"\u00E9\xD83D\xDE00 \xD800 unpaired\n\n",
                                                   stamp() + L"again\n", stamp() + L"again\n"}));
  for (std::size_t i = 0; i < read.lines.size(); ++i) {
    EXPECT_EQ(read.ciphers[i].size(), (read.lines[i].size() * 2 / 16 + 1) * 16) << "at least one byte of padding";
  }
  EXPECT_EQ(read.ciphers[3], read.ciphers[4]) << "no record depends on the one before";
}

TEST_F(Logger, AScrambledFileIsMarkedTextWithTheTimeInTheClear) {
  start(false);
  const Bytes first = file(self, false);
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 3), (Bytes{0xEF, 0xBB, 0xBF}));
  const std::string head = base::strings::format("%ls", stamp().c_str());
  const struct {
    const wchar_t* message;
    const char* expected;
  } rows[] = {
      {L"ab\n", "T&"},                                  // a ^ 5, b ^ D
      {L"?5\n", "?q"},                                  // what would become a line feed stays, and the key goes on
      {L"5?\n", "5{"},                                  // what would become a terminator stays
      {L"x", ""},                                       // whoever sends no line feed loses a character
      {L"\x0100\x0161\n", "\xE3\x90\x80\xE3\x8C\xA5"},  // a zero byte spends no key
      {L"a\nb\n", "TNP"},                               // inside, a line feed is a character like others
      {L"\xEC00!\n",
       "\xEF\xBF\xBD"
       "e"},  // scrambled to an unpaired surrogate
      {L"\x9C08\xEE70"
       L"aaaaaaaaaaaaaaaaaaaa\n",
       "\xF0\x9F\x99\x82"
       "\" VP#R$YU\aXW PV$\"UUQ"},  // to a pair
      {L"\x9C08\n", "\xEF\xBF\xBD"},
  };
  std::size_t at = first.size();
  for (const auto& row : rows) {
    log->WriteLine(row.message);
    const Bytes all = file(self, false);
    EXPECT_EQ(Bytes(all.begin() + static_cast<std::ptrdiff_t>(at), all.end()), bytes_of(head + row.expected + "\r\n"))
        << row.expected;
    at = all.size();
  }
}

TEST_F(Logger, AnotherStartOfTheSecondAppendsWithoutASecondMark) {
  start(false);
  const Bytes before = file(self, false);
  ASSERT_TRUE(system.files.create_folder(path(L"kyinstall", false).c_str())) << "so that the thread's file stays";
  start(false);
  EXPECT_EQ(file(self, false).size(), before.size() * 2 - 3);
}

TEST_F(Logger, NamesAreMadeOfLabelTimeThreadAndForm) {
  using diagnostics::LogRun;
  const LogRun labelled{L"setup.", 1763128000, true};
  const LogRun bare{L"", 1763128000, false};
  EXPECT_EQ(diagnostics::thread_file_name(labelled, 4242), L"setup.1763128000.4242.v2.bin");
  EXPECT_EQ(diagnostics::merged_file_name(labelled, L""), L"setup.1763128000.kyinstall.v2.bin");
  EXPECT_EQ(diagnostics::merged_file_name(labelled, L"tag."), L"setup.tag.1763128000.kyinstall.v2.bin");
  EXPECT_EQ(diagnostics::thread_file_name(bare, 4294967295), L"1763128000.4294967295.bin");
  EXPECT_EQ(diagnostics::merged_file_name(bare, L"tag."), L"1763128000.kyinstall.bin") << "a tag wants a label";
  const std::wstring longest(49 - std::wstring(L"1763128000.4.bin").size(), L'x');
  EXPECT_EQ(diagnostics::thread_file_name({longest, 1763128000, false}, 4).size(), 49U);
}

TEST_F(Logger, AtTheEndThreadsAreJoinedInTheOrderOfTheirIds) {
  for (const bool sealed : {true, false}) {
    start(sealed);
    std::vector<std::uint32_t> threads = {self};
    for (int n = 0; n < 3; ++n) {
      threads.push_back(support::run_on_thread(system, [this] {
        log->StartThreadLog(L"another", false);
        log->WriteLine(std::wstring(3000, L'm').c_str());
      }));
    }
    log->WriteLine(L"last\n");
    Bytes joined;
    std::vector<std::wstring> joined_lines;
    for (const std::uint32_t thread : threads) {
      const Bytes part = file(thread, sealed);
      joined.insert(joined.end(), part.begin() + (sealed && thread != self ? 132 : 0), part.end());
    }
    log.reset();
    EXPECT_EQ(merged(sealed), joined);
    for (const std::uint32_t thread : threads) EXPECT_TRUE(file(thread, sealed).empty());
    if (sealed) {
      const std::vector<std::wstring> read = lines(joined);
      ASSERT_EQ(read.size(), 8U);
      EXPECT_EQ(read[1], stamp() + L"last\n\n");
      EXPECT_EQ(read[6], first_line(threads[3], L"another"));
    }
    system.files.remove(path(L"kyinstall", sealed).c_str());
  }
}

TEST_F(Logger, WhatCannotBeMergedStays) {
  enum class Obstacle { part_is_held, merged_is_a_folder, disk_is_full };
  for (const Obstacle obstacle : {Obstacle::part_is_held, Obstacle::merged_is_a_folder, Obstacle::disk_is_full}) {
    start(true);
    const std::uint32_t other = support::run_on_thread(system, [this] { log->StartThreadLog(L"other", false); });
    const Bytes own = file(self, true);
    const Bytes others = file(other, true);
    const auto hold = [&](std::vector<machine::FileHold> holds, std::optional<std::uint64_t> free) {
      desk.machine.change([&](machine::State& state) {
        const machine::Path where = machine::parse_path(path(std::to_wstring(self), true), L"C:\\").path;
        const machine::NodeId node = machine::look_up(state.files, where, machine::LastLink::itself).node;
        state.files.nodes.at(node).holds = std::move(holds);
        state.files.volumes.at(L"C:").free = free;
      });
    };
    if (obstacle == Obstacle::part_is_held) hold({{machine::file_right::read_data, ports::file_share::none, 0}}, {});
    if (obstacle == Obstacle::merged_is_a_folder) desk.folder(path(L"kyinstall", true).c_str());
    if (obstacle == Obstacle::disk_is_full) hold({}, 200);
    log.reset();
    if (obstacle != Obstacle::merged_is_a_folder) hold({}, {});
    EXPECT_EQ(file(self, true), own);
    EXPECT_EQ(file(other, true), obstacle == Obstacle::part_is_held ? Bytes() : others);
    for (const std::uint32_t thread : {self, other}) system.files.remove(path(std::to_wstring(thread), true).c_str());
    system.files.remove(path(L"kyinstall", true).c_str());
    system.files.remove_folder(path(L"kyinstall", true).c_str());
  }
}

TEST_F(Logger, ThreadsWithoutAFileWriteToTheMainThreadsOrNowhere) {
  for (const bool is_main : {true, false}) {
    start(true, is_main);
    const std::uint32_t other = support::run_on_thread(system, [this] { log->WriteLine(L"guest\n"); });
    EXPECT_TRUE(file(other, true).empty());
    const std::vector<std::wstring> read = lines(file(self, true));
    EXPECT_EQ(read.size(), is_main ? 2U : 1U);
    EXPECT_EQ(read.back(), is_main ? stamp() + L"guest\n\n" : first_line(self, L"No description"));
    log.reset();
    EXPECT_EQ(lines(merged(true)), read);
  }
}

TEST_F(Logger, AStartBehindTheFirstRecordComesTooLate) {
  start(true, true);
  const std::uint32_t other = support::run_on_thread(system, [this] {
    log->WriteLine(L"early\n");
    log->StartThreadLog(L"late", false);
    log->WriteLine(L"after\n");
  });
  EXPECT_EQ(file(other, true).size(), 132U) << "a key header and no record";
  const std::vector<std::wstring> expected = {first_line(self, L"No description"), stamp() + L"early\n\n",
                                              first_line(other, L"late"), stamp() + L"after\n\n"};
  log.reset();
  EXPECT_EQ(lines(merged(true)), expected);
  EXPECT_EQ(file(other, true).size(), 132U) << "nobody merges it";
}

TEST_F(Logger, AThreadThatStartsTwiceHasASecondKeyHeaderInItsFile) {
  start(true);
  const std::size_t once = file(self, true).size();
  log->StartThreadLog(nullptr, false);
  const Bytes twice = file(self, true);
  const std::size_t header = 132;
  ASSERT_EQ(twice.size(), 2 * once);
  EXPECT_TRUE(std::equal(twice.begin(), twice.begin() + header, twice.begin() + static_cast<std::ptrdiff_t>(once)));
}

TEST_F(Logger, WithoutAFolderRecordsAreLostAndNothingElse) {
  ASSERT_TRUE(system.files.remove_folder(L"C:\\ProgramData"));
  start(true, true);
  log->WriteLine(L"lost\n");
  log.reset();
  EXPECT_FALSE(system.files.exists(L"C:\\ProgramData"));
}

TEST_F(Logger, AFailureAtAnyStepOfSealingIsToldAndLeavesNothing) {
  using faults::Operation;
  const struct {
    Operation operation;
    std::uint64_t calls;  // as many are made
  } rows[] = {{Operation::cng_open_algorithm, 3}, {Operation::cng_random, 32},    {Operation::cng_generate_key, 1},
              {Operation::cng_block_length, 2},   {Operation::cng_export_key, 2}, {Operation::cng_import_public_key, 1},
              {Operation::cng_encrypt, 2}};
  for (const auto& row : rows) {
    for (std::uint64_t call = 1; call <= row.calls + 1; ++call) {
      faults::FaultySystem faulty(system);
      faulty.fail(row.operation, call, false, static_cast<ports::ErrorCode>(ports::status::not_supported));
      ports::unbind();
      ports::bind(faulty.system());
      CLoggerApi tried;
      EXPECT_EQ(tried.SetupEncryption(L"AES", 256), call > row.calls)
          << static_cast<int>(row.operation) << ", " << call;
      // Nobody has started, and nothing is left but an empty merged file.
      tried.SetXorKey("k");
    }
  }
}

TEST_F(Logger, FailuresOfTheProviderCarryTheirCallAndCode) {
  const auto caught = [](auto&& call) {
    try {
      call();
    } catch (const std::system_error& error) {
      EXPECT_EQ(&error.code().category(), &winapi::details::win_error_category());
      return std::string(error.what()) + " | " + std::to_string(error.code().value());
    }
    return std::string("nothing");
  };
  EXPECT_EQ(caught([] { static_cast<void>(diagnostics::open_algorithm(L"none")); }).substr(0, 42),
            "::BCryptOpenAlgorithmProvider has failed.:");
  EXPECT_EQ(caught([] { static_cast<void>(diagnostics::block_length(ports::CngKey::null)); }),
            "::BCryptGetProperty has failed.: The handle is invalid.\r\n | 6");
  Bytes iv;
  EXPECT_THROW(static_cast<void>(diagnostics::encrypt_buffer(ports::CngKey::null, iv, iv, 1)), std::out_of_range);
}

using LoggerDeathTest = Logger;

TEST_F(LoggerDeathTest, ANameOf50CharactersStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "fast");
  const auto stopped = testing::ExitedWithCode(1);
  make(false);
  log->SetLabel(std::wstring(40, L'x'));
  EXPECT_EXIT(log->StartThreadLog(nullptr, false), stopped, "");
  EXPECT_EXIT(log.reset(), stopped, "");
  log->SetLabel(L"");
}

}  // namespace
}  // namespace ky
