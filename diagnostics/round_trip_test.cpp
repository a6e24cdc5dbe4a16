#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/logger_api.h"
#include "diagnostics/reader/log_reader.h"
#include "diagnostics/reader/session_key.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "tests/support/log_files.h"
#include "tests/support/temporary_folder.h"

// What is written by many threads at once, read back through the reader.
namespace diagnostics {
namespace {

constexpr std::size_t threads = 8;
constexpr std::size_t records = 12'500;  // of each thread
constexpr std::size_t longest = 4000;    // units

/// Words, and among them characters of all planes. Two things the fall-back form cannot tell apart are left out: a byte
/// of a line feed from another one, and a lost character that spent one key byte from those that spent two.
std::wstring make_text(std::size_t length) {
  std::minstd_rand random(1);
  const auto below = [&random](std::uint32_t limit) { return static_cast<std::uint32_t>(random()) / 16 % limit; };
  std::wstring text;
  while (text.size() < length) {
    const std::uint32_t kind = below(64);
    if (kind > 1) {
      text.push_back(kind < 12 ? L' ' : static_cast<wchar_t>(L'a' + below(26)));
      continue;
    }
    std::uint32_t unit = kind == 0 ? 0xDC00 + below(0x400) : 1 + below(0xD7FF);
    if (unit >> 8 == 0x0A) unit = 0x263A;
    if ((unit & 0xFF) == 0x0A || (unit & 0xFF) == 0) ++unit;
    if (kind == 0) text.push_back(static_cast<wchar_t>(0xD801 + below(9)));
    text.push_back(static_cast<wchar_t>(unit));
  }
  return text;
}

/// The n-th message of a thread, with a line feed at its end and none inside.
std::wstring message(std::size_t thread, std::size_t n) {
  static const std::wstring text = make_text(1 << 16);
  const std::size_t number = thread * records + n;
  // Short ones are the most, as in any log.
  const auto units =
      static_cast<std::size_t>(std::exp(std::log(double{longest}) * static_cast<double>(n % 1000) / 999));
  std::wstring taken = text.substr(number * 7919 % (text.size() - longest), units - 1);
  const auto half = [](wchar_t unit, wchar_t first) { return (unit & 0xFC00) == first; };
  if (!taken.empty() && half(taken.back(), 0xD800)) taken.pop_back();
  if (!taken.empty() && half(taken.front(), 0xDC00)) taken.erase(0, 1);
  return taken + L'\n';
}

/// What the fall-back form leaves of a message: all but its last character, with U+FFFD where a unit becomes half a
/// surrogate pair, or U+FFFD itself.
std::wstring expected_of_fall_back(std::wstring text) {
  text.pop_back();
  std::wstring scrambled;
  std::size_t at = 0;
  const auto mixed = [&at](std::uint32_t byte) {
    if (byte == 0) return byte;
    const auto key = static_cast<std::uint8_t>(log_format::fall_back_key[at++ % log_format::fall_back_key.size()]);
    const std::uint32_t with_key = byte ^ key;
    return with_key == 0x0A || with_key == 0 ? byte : with_key;
  };
  for (const wchar_t unit : text) {
    const std::uint32_t low = mixed(static_cast<std::uint32_t>(unit) & 0xFF);
    scrambled.push_back(static_cast<wchar_t>(low | mixed(static_cast<std::uint32_t>(unit) >> 8) << 8));
  }
  const auto within = [](wchar_t unit, wchar_t first, wchar_t last) { return unit >= first && unit <= last; };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (within(scrambled[i], 0xD800, 0xDBFF) && i + 1 < text.size() && within(scrambled[i + 1], 0xDC00, 0xDFFF)) {
      ++i;
    } else if (within(scrambled[i], 0xD800, 0xDFFF) || scrambled[i] == 0xFFFD) {
      text[i] = 0xFFFD;
    }
  }
  return text;
}

/// Compares each record with what its thread wrote at that place.
class Comparing final : public reader::RecordSink {
 public:
  Comparing(std::map<std::uint32_t, std::size_t> numbers, bool sealed)
      : numbers_(std::move(numbers)), sealed_(sealed) {}

  void record(const reader::Record& read) override {
    const std::size_t thread = numbers_.at(read.thread);
    const std::size_t n = seen_[thread]++;
    if (n == 0) return;  // the first record, which the log makes itself
    const std::wstring written = message(thread, n - 1);
    if (read.message != (sealed_ ? written : expected_of_fall_back(written))) ++wrong_;
  }
  void problem(const reader::Problem& problem) override { ADD_FAILURE() << problem.line(); }

  void expect_all() {
    EXPECT_EQ(wrong_, 0U);
    EXPECT_EQ(seen_.size(), threads);
    for (const auto& [thread, count] : seen_) EXPECT_EQ(count, records + 1) << thread;
  }

 private:
  const std::map<std::uint32_t, std::size_t> numbers_;
  const bool sealed_;
  std::map<std::size_t, std::size_t> seen_;
  std::size_t wrong_ = 0;
};

class RoundTrip : public testing::TestWithParam<bool> {};

TEST_P(RoundTrip, EveryRecordOfEightThreadsComesBackInItsThreadsOrder) {
  const bool sealed = GetParam();
  const support::TemporaryFolder folder;
  machine::Machine world(machine::Options{.pace = machine::Pace::real, .log_folder = folder.path()});
  const auto engines = ports::make_engines(world.errors());
  const ports::System system = world.system(*engines);
  ports::bind(system);
  std::unique_ptr<ky::CLoggerApi, ky::Releaser> log(new ky::CLoggerApi);
  if (sealed) {
    ASSERT_TRUE(log->SetupEncryption(L"AES", 128));
  } else {
    log->SetXorKey(log_format::fall_back_key.data());
  }

  std::map<std::uint32_t, std::size_t> numbers;
  std::vector<ports::Handle> running;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    const auto work = [&log, thread] {
      log->StartThreadLog(nullptr, false);
      for (std::size_t n = 0; n < records; ++n) log->WriteLine(message(thread, n).c_str());
    };
    std::uint32_t id = 0;
    running.push_back(system.threads.start(std::make_unique<support::Body>(work), id));
    numbers[id] = thread;
  }
  EXPECT_EQ(system.waits.wait(running, true, ports::infinite), ports::wait_result::object_0);
  for (const ports::Handle thread : running) system.waits.close(thread);

  reader::KeyOpener keys(system.cng);
  ASSERT_TRUE(keys.use_algorithm(L"AES") && keys.use_private_key(support::log_private_key()));
  reader::Settings settings;
  settings.keys = &keys;
  for (const bool merged : {false, true}) {
    if (!merged && !sealed) continue;  // one reading of this form is long enough
    if (merged) log.reset();
    Comparing sink(numbers, sealed);
    reader::read_logs(reader::files_of_folder(folder.path()), settings, sink);
    sink.expect_all();
  }
  EXPECT_EQ(folder.files(), 1U) << "the threads' files went with the merge";
  EXPECT_EQ(world.desk_failure(), "");
  ports::unbind();
}

INSTANTIATE_TEST_SUITE_P(Forms, RoundTrip, testing::Bool(),
                         [](const auto& form) { return form.param ? "Sealed" : "FallBack"; });

}  // namespace
}  // namespace diagnostics
