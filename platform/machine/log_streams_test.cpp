#include "platform/machine/log_streams.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/desk/desk.h"
#include "platform/machine/machine.h"
#include "tests/support/named_world.h"
#include "tests/support/temporary_folder.h"

namespace machine {
namespace {

using ports::LogMode;
using ports::LogStream;

class LogStreamsTest : public testing::Test {
 protected:
  [[nodiscard]] static Options through_to(const std::string& folder) {
    Options options;
    options.log_folder = folder;
    return options;
  }
  static LogStream open(Machine& on, const wchar_t* path, LogMode mode = LogMode::append) {
    const LogStream stream = on.log_streams().open(path, mode);
    EXPECT_NE(stream, LogStream::null) << on.errors().last();
    return stream;
  }
  static void record(Machine& on, LogStream stream, std::string_view text) {
    on.log_streams().write(stream, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    EXPECT_TRUE(on.log_streams().flush(stream));
  }
  [[nodiscard]] std::string on_desk(const char* name) const { return support::text_of(folder_ / name); }

  support::TemporaryFolder folder_;
};

TEST_F(LogStreamsTest, WhatIsFlushedIsOnTheDeskAtOnceAndGoesWithItsFile) {
  ASSERT_EQ(desk::write_file(folder_ / "s.1.4.bin", "of an earlier rehearsal"), "");
  const auto world = support::NamedWorld().file(L"C:\\ProgramData\\s.1.8.bin", "old").make(through_to(folder_.path()));
  const LogStream fresh = open(*world, L"C:\\ProgramData\\s.1.4.bin");
  const LogStream old = open(*world, L"C:\\ProgramData\\s.1.8.bin");
  record(*world, fresh, "one");
  record(*world, fresh, "xx");
  record(*world, old, "new");
  EXPECT_EQ(on_desk("s.1.4.bin"), "onexx");
  EXPECT_EQ(on_desk("s.1.8.bin"), "oldnew");

  record(*world, open(*world, L"C:\\ProgramData\\s.1.8.bin"), "er");
  EXPECT_EQ(on_desk("s.1.8.bin"), "oldnewer") << "a second stream goes on in the same file";
  const LogStream emptied = open(*world, L"C:\\ProgramData\\s.1.8.bin", LogMode::write);
  EXPECT_EQ(on_desk("s.1.8.bin"), "");
  record(*world, emptied, "again");
  EXPECT_EQ(on_desk("s.1.8.bin"), "again");

  EXPECT_FALSE(world->files().remove(L"C:\\ProgramData\\s.1.4.bin")) << "it is open";
  EXPECT_TRUE(desk::exists(folder_ / "s.1.4.bin"));
  world->log_streams().close(fresh);
  EXPECT_TRUE(world->files().remove(L"C:\\ProgramData\\s.1.4.bin"));
  EXPECT_FALSE(desk::exists(folder_ / "s.1.4.bin"));
  EXPECT_EQ(world->desk_failure(), "");
}

TEST_F(LogStreamsTest, TheDeskGetsWhatManyThreadsWriteInTheMachinesOrder) {
  const auto world = support::NamedWorld().make(through_to(folder_.path()));
  const LogStream streams[] = {open(*world, L"C:\\ProgramData\\a.bin"), open(*world, L"C:\\ProgramData\\a.bin"),
                               open(*world, L"C:\\ProgramData\\b.bin")};
  std::vector<std::thread> threads;
  for (char letter = 'a'; letter < 'g'; ++letter) {
    threads.emplace_back([&world, &streams, letter] {
      for (int i = 0; i < 100; ++i) record(*world, streams[letter % 3], {&letter, 1});
    });
  }
  for (std::thread& thread : threads) thread.join();
  const State state = world->state();
  for (const char* name : {"a.bin", "b.bin"}) {
    const std::wstring path = std::wstring(L"C:\\ProgramData\\") + static_cast<wchar_t>(name[0]) + L".bin";
    const Found found = look_up(state.files, parse_path(path, L"C:\\").path, LastLink::itself);
    const std::vector<std::uint8_t> bytes = state.files.nodes.at(found.node).bytes.all();
    EXPECT_EQ(on_desk(name), std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ(bytes.size(), name[0] == 'a' ? 400U : 200U);
  }
}

TEST_F(LogStreamsTest, NothingOnTheDeskStopsALog) {
  const auto without = support::NamedWorld().make();
  record(*without, open(*without, L"C:\\ProgramData\\s.1.4.bin"), "one");
  EXPECT_EQ(folder_.files(), 0U);

  const auto broken = support::NamedWorld().make(through_to(folder_ / "missing"));
  const LogStream stream = open(*broken, L"C:\\ProgramData\\s.1.4.bin");
  record(*broken, stream, "one");
  EXPECT_EQ(broken->log_streams().length(stream), 3U);
  EXPECT_NE(broken->desk_failure(), "");
}

TEST_F(LogStreamsTest, AFullDriveLosesWhatWasWritten) {
  support::NamedWorld laid_out;
  laid_out.state.files.volumes.at(L"C:").free = 4;
  const auto world = laid_out.make(through_to(folder_.path()));
  const LogStream stream = open(*world, L"C:\\ProgramData\\s.1.4.bin");
  record(*world, stream, "one");
  const std::uint8_t more[] = {'t', 'w', 'o'};
  world->log_streams().write(stream, more);
  EXPECT_FALSE(world->log_streams().flush(stream));
  record(*world, stream, "3");
  EXPECT_EQ(on_desk("s.1.4.bin"), "one3");
}

}  // namespace
}  // namespace machine
