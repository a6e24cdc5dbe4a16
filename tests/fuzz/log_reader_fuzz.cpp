#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/fall_back_cursor.h"
#include "diagnostics/reader/sealed_cursor.h"
#include "diagnostics/reader/timeline.h"
#include "tests/support/log_maker.h"
#include "tests/support/memory_source.h"

namespace {

using namespace diagnostics::reader;

/// Counts, and looks at what it gets.
class Counter final : public RecordSink {
 public:
  void record(const Record& record) override {
    if (record.offset >= size || record.time >= day_length) std::abort();
    ++records;
  }
  void problem(const Problem&) override {}

  std::uint64_t size = 0;
  std::uint64_t records = 0;
};

support::LogMaker& maker() {
  static support::LogMaker made;
  return made;
}

const SealedKey& sealed_key() {
  static const SealedKey key = [] {
    const std::string& header = maker().header();
    SealedKey opened{nullptr, {header.begin() + 4, header.end()}};
    opened.key = maker().keys().open(opened.wrapped);
    return opened;
  }();
  return key;
}

/// What the bytes are, plain text sealed or ciphertext as it stands, is told by the first of them.
std::string sealed_bytes(std::string_view input) {
  if (input.empty() || input[0] % 2 != 0) return std::string(input);
  std::string bytes;
  for (std::size_t from = 1; from < input.size();) {
    const std::size_t size = std::min<std::size_t>(input.size() - from, static_cast<unsigned char>(input[from]) + 1U);
    const std::string_view part = input.substr(from, size);
    // One in four stands as it is, among records that are whole.
    bytes +=
        part[0] % 4 == 0 ? std::string(part) : maker().record("10:00:00:000", std::wstring(part.begin(), part.end()));
    from += size;
  }
  return bytes;
}

/// Reads by file and by timeline, which give equally many records.
void read_both_ways(const std::function<std::unique_ptr<Cursor>(Extent)>& cursor, std::uint64_t size) {
  const std::string name = "input";
  const Extent whole{0, size, End::file};
  Counter by_file;
  Counter by_time;
  by_file.size = by_time.size = size;
  ThreadLog file(name, cursor(whole), std::nullopt);
  read_in_order({&file}, by_file);
  ThreadLog index(name, cursor(whole), std::nullopt);
  std::vector<std::unique_ptr<ThreadLog>> owned;
  ThreadLogs logs;
  for (const Segment& segment : find_segments(index, whole)) {
    const Extent extent{segment.begin, segment.end, segment.end == size ? End::file : End::part};
    owned.push_back(std::make_unique<ThreadLog>(name, cursor(extent), std::nullopt));
    logs.push_back(owned.back().get());
  }
  read_timeline(logs, by_time);
  if (by_file.records != by_time.records) std::abort();
}

}  // namespace

/// No bytes break the reader of logs, in either form and either order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Unscrambler unscrambler(diagnostics::log_format::fall_back_key);
  const std::string input(data, data + size);
  const support::MemorySource lines(input);
  read_both_ways(
      [&](Extent extent) { return std::make_unique<FallBackCursor>(lines, unscrambler, extent, 64, nullptr); }, size);
  const std::string bytes = sealed_bytes(input);
  const support::MemorySource sealed(bytes);
  read_both_ways(
      [&](Extent extent) { return std::make_unique<SealedCursor>(sealed, sealed_key(), extent, 64, nullptr); },
      bytes.size());
  return 0;
}
