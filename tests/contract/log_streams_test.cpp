#include "platform/ports/log_streams.h"

#include <thread>

#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::LogMode;
using ports::LogStream;

class LogStreams : public Contract {
 protected:
  ports::LogStreams& streams() { return system().log_streams; }

  LogStream open(const std::wstring& name, LogMode mode) {
    const LogStream stream = streams().open((folder_ + L"\\" + name).c_str(), mode);
    EXPECT_NE(stream, LogStream::null) << last_error();
    return stream;
  }
  void write(LogStream to, std::string_view text) {
    EXPECT_EQ(streams().write(to, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}), text.size());
  }
  /// What another stream reads behind the first `skipped` bytes.
  std::string content(const std::wstring& name, std::uint32_t skipped = 0) {
    const LogStream stream = open(name, LogMode::read);
    EXPECT_TRUE(streams().skip(stream, skipped));
    std::string text;
    std::uint8_t piece[3];
    for (std::size_t got = 1; got != 0; text.append(piece, piece + got)) got = streams().read(stream, piece);
    streams().close(stream);
    return text;
  }

  std::wstring folder_ = world().folder();
};

const std::string_view bytes{"one\n\r\n\0\x1A\xFF", 9};

TEST_P(LogStreams, WhatIsFlushedIsThereForOthersByteForByte) {
  const LogStream first = open(L"a.bin", LogMode::append);
  EXPECT_EQ(streams().length(first), 0U);
  write(first, bytes);
  EXPECT_EQ(content(L"a.bin"), "") << "not yet flushed";
  EXPECT_TRUE(streams().flush(first));
  EXPECT_EQ(streams().length(first), bytes.size());
  EXPECT_EQ(content(L"a.bin"), bytes);
  EXPECT_EQ(content(L"a.bin", 7), bytes.substr(7));
  EXPECT_EQ(content(L"a.bin", 100), "");

  const LogStream second = open(L"a.bin", LogMode::append);
  write(second, "two");
  EXPECT_TRUE(streams().flush(second));
  write(first, std::string(100'000, 'x'));
  streams().close(second);
  streams().close(first);
  EXPECT_EQ(content(L"a.bin", 9), "two" + std::string(100'000, 'x')) << "each at the end, and closing flushes";
  streams().close(open(L"a.bin", LogMode::write));
  EXPECT_EQ(content(L"a.bin"), "");
  streams().close(LogStream::null);
}

TEST_P(LogStreams, AFileThatCannotBeOpenedGivesNoStream) {
  EXPECT_EQ(streams().open((folder_ + L"\\missing").c_str(), LogMode::read), LogStream::null);
  EXPECT_EQ(streams().open((folder_ + L"\\missing\\a.bin").c_str(), LogMode::append), LogStream::null);
  EXPECT_EQ(streams().open((folder_ + L"\\missing\\a.bin").c_str(), LogMode::write), LogStream::null);
  EXPECT_EQ(streams().open(folder_.c_str(), LogMode::append), LogStream::null);
}

TEST_P(LogStreams, AnOpenLogCannotBeDeletedButAClosedOneCan) {
  const std::wstring path = folder_ + L"\\a.bin";
  const LogStream stream = open(L"a.bin", LogMode::append);
  EXPECT_EQ(code_of(system().files.remove(path.c_str())), ports::code::sharing_violation);
  streams().close(stream);
  EXPECT_TRUE(system().files.remove(path.c_str()));
}

TEST_P(LogStreams, ThreadsMayShareAStream) {
  const LogStream stream = open(L"a.bin", LogMode::append);
  std::vector<std::thread> threads;
  for (char letter = 'a'; letter < 'e'; ++letter) {
    threads.emplace_back([this, stream, letter] {
      for (int i = 0; i < 200; ++i) {
        write(stream, std::string(5, letter));
        EXPECT_TRUE(streams().flush(stream));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  streams().close(stream);
  const std::string text = content(L"a.bin");
  ASSERT_EQ(text.size(), 4000U);
  for (std::size_t at = 0; at < text.size(); at += 5) ASSERT_EQ(text.substr(at, 5), std::string(5, text[at])) << at;
}

KY_CONTRACT(LogStreams);

}  // namespace

}  // namespace contract
