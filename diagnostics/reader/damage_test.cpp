#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/fall_back_cursor.h"
#include "diagnostics/reader/log_file.h"
#include "diagnostics/reader/sealed_cursor.h"
#include "installer/utils/base/strings/utf8.h"
#include "tests/support/log_maker.h"
#include "tests/support/memory_source.h"

namespace {

using namespace diagnostics::reader;

struct Told {
  ProblemKind kind;
  std::uint64_t offset;
  std::uint64_t bytes;
};

/// What a cursor made of some bytes.
struct Reading {
  std::vector<std::wstring> messages;
  std::vector<Told> told;
};

/// A file of 24 records in either form: where each begins, and its message.
class DamagedLog : public testing::TestWithParam<Form> {
 protected:
  DamagedLog() {
    if (sealed()) bytes_ = maker_.header();
    begin_ = bytes_.size();
    for (std::size_t i = 0; i < 24; ++i) {
      std::wstring message = L"record " + std::to_wstring(i) + L", \u00E9\u65E5: " + std::wstring(i * 7 % 40, L'x');
      begins_.push_back(bytes_.size());
      const std::string time = "10:00:" + std::to_string(10 + i) + ":000";
      bytes_ += sealed() ? maker_.record(time, message) : line(time, message);
      messages_.push_back(std::move(message));
    }
    begins_.push_back(bytes_.size());
  }

  [[nodiscard]] static bool sealed() { return GetParam() == Form::sealed; }

  /// A scrambled line. Scrambling and turning back differ in nothing that these messages hold.
  [[nodiscard]] std::string line(const std::string& time, const std::wstring& message) const {
    std::wstring scrambled;
    unscrambler_.turn_back(base::strings::to_utf8(message), scrambled);
    return "[" + time + "] " + base::strings::to_utf8(scrambled) + "\r\n";
  }

  [[nodiscard]] Reading read(const std::string& bytes, std::size_t piece = 512) const {
    const support::MemorySource source(bytes);
    Reading reading;
    const auto note = [&](ProblemKind kind, std::uint64_t offset, std::uint64_t count, const std::string&) {
      reading.told.push_back({kind, offset, count});
    };
    const Extent extent{begin_, bytes.size(), End::file};
    std::unique_ptr<Cursor> cursor;
    if (sealed()) {
      const std::string& header = maker_.header();
      SealedKey key{nullptr, std::vector<std::uint8_t>(header.begin() + 4, header.end())};
      key.key = maker_.keys().open(key.wrapped);
      cursor = std::make_unique<SealedCursor>(source, key, extent, piece, note);
    } else {
      cursor = std::make_unique<FallBackCursor>(source, unscrambler_, extent, piece, note);
    }
    for (Head head; cursor->next(head);) cursor->message(reading.messages.emplace_back());
    return reading;
  }

  /// The record in which the byte at `offset` lies.
  [[nodiscard]] std::size_t record_at(std::size_t offset) const {
    return static_cast<std::size_t>(std::upper_bound(begins_.begin(), begins_.end(), offset) - begins_.begin()) - 1;
  }

  support::LogMaker maker_;
  Unscrambler unscrambler_{diagnostics::log_format::fall_back_key};
  std::string bytes_;
  std::size_t begin_ = 0;
  std::vector<std::size_t> begins_;
  std::vector<std::wstring> messages_;
};

TEST_P(DamagedLog, EveryRecordBeforeACutIsRead) {
  for (std::size_t cut = begin_; cut <= bytes_.size(); ++cut) {
    const Reading reading = read(bytes_.substr(0, cut));
    const std::size_t whole = record_at(cut);
    ASSERT_GE(reading.messages.size(), whole) << cut;
    for (std::size_t i = 0; i < whole; ++i) ASSERT_EQ(reading.messages[i], messages_[i]) << cut;
    ASSERT_LE(reading.messages.size(), sealed() ? whole : whole + 1) << cut;
    ASSERT_EQ(reading.told.size(), cut == begins_[whole] ? 0U : 1U) << cut;
    if (reading.told.empty()) continue;
    EXPECT_EQ(reading.told[0].kind, ProblemKind::cut_short) << cut;
    EXPECT_EQ(reading.told[0].offset, begins_[whole]) << cut;
    EXPECT_EQ(reading.told[0].bytes, cut - begins_[whole]) << cut;
  }
}

TEST_P(DamagedLog, AFlippedByteCostsNoRecordButItsOwn) {
  for (std::size_t at = begin_; at < bytes_.size(); ++at) {
    const std::size_t hit = record_at(at);
    for (const int mask : {0x01, 0xFF}) {
      std::string bytes = bytes_;
      bytes[at] = static_cast<char>(bytes[at] ^ mask);
      Reading reading = read(bytes);
      // What a cipher without authenticity lets through, and a line that was split, is given as it is.
      std::vector<std::wstring> others = messages_;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(hit));
      const bool given = reading.messages.size() > others.size();
      if (given) reading.messages.erase(reading.messages.begin() + static_cast<std::ptrdiff_t>(hit));
      ASSERT_EQ(reading.messages, others) << at << " " << mask;
      ASSERT_TRUE(given || !reading.told.empty()) << at << " " << mask;
      for (const Told& told : reading.told) {
        ASSERT_TRUE(told.offset >= begins_[hit] && told.offset + told.bytes <= begins_[hit + 1]) << at << " " << mask;
      }
      // Without its length a record is found by those around it.
      if (sealed() && at < begins_[hit] + 4) {
        ASSERT_TRUE(given) << at << " " << mask;
        ASSERT_EQ(reading.told.size(), 1U);
        EXPECT_EQ(reading.told[0].kind, ProblemKind::length);
      }
    }
  }
}

TEST_P(DamagedLog, TheSizeOfThePiecesReadMakesNoDifference) {
  for (std::size_t piece = 1; piece < 600; piece += 7) EXPECT_EQ(read(bytes_, piece).messages, messages_) << piece;
}

INSTANTIATE_TEST_SUITE_P(Forms, DamagedLog, testing::Values(Form::sealed, Form::fall_back),
                         [](const auto& form) { return form.param == Form::sealed ? "Sealed" : "FallBack"; });

}  // namespace
