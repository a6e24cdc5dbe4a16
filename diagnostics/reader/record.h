#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace diagnostics::reader {

/// One record of a log. What it refers to lives until the sink returns.
struct Record {
  const std::string& file;
  std::uint64_t offset = 0;         // of its first byte in the file
  std::uint32_t thread = 0;         // 0: not known
  std::optional<std::int32_t> day;  // since 1970-01-01, local; nothing where no record of the run tells the date
  std::uint32_t time = 0;           // milliseconds since midnight, local
  std::wstring_view message;        // as it was logged: with its own line end, which nearly every message has, in the
                                    // sealed form; without its last character in the fall-back form
};

enum class ProblemKind : std::uint8_t {
  note,         // nothing is lost
  record,       // this record cannot be read
  passed_over,  // bytes that are no record
  length,       // a damaged length field; its record was found without it
  cut_short,    // the file ends inside a record
  key_header,   // damaged; the key was taken from another file of the run
  no_key,       // the file is sealed and no private key was given
  wrong_key,    // the private key is another log's, or the algorithm another one
  file,         // the file cannot be opened or read
};

/// What a sink hears of damage and other obstacles.
struct Problem {
  ProblemKind kind = ProblemKind::note;
  std::string file;
  std::uint64_t offset = 0;
  std::uint64_t bytes = 0;  // how many are concerned
  std::string text;         // without file and offset

  /// File, offset where it matters, and text, without a line end.
  [[nodiscard]] std::string line() const {
    const bool placed = kind != ProblemKind::file && kind != ProblemKind::note && kind != ProblemKind::no_key;
    return file + ": " + (placed ? "offset " + std::to_string(offset) + ": " : std::string()) + text;
  }
};

/// Takes what is read, in the order of reading.
class RecordSink {
 public:
  virtual ~RecordSink() = default;
  /// What follows is of this run. `name` is what its files' names begin with.
  virtual void begin_run(const std::string& name) { static_cast<void>(name); }
  virtual void record(const Record& record) = 0;
  virtual void problem(const Problem& problem) = 0;
};

}  // namespace diagnostics::reader
