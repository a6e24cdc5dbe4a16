#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "diagnostics/reader/record.h"

namespace diagnostics::reader {

/// A longer one is damage: neither form's writer makes records near it, and the reader's memory is bounded.
inline constexpr std::size_t max_record_size = std::size_t{4} << 20;

/// What ends the part of a file that a cursor reads.
enum class End : std::uint8_t {
  file,     // the file: a torn record there was cut short
  part,     // another part of the same file
  growing,  // the file so far: a torn record there is still being written
};

struct Extent {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  End what = End::file;
};

/// Hears of the damage that a cursor meets.
using Damage = std::function<void(ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, std::string text)>;

/// What is known of a record without its message.
struct Head {
  std::uint64_t offset = 0;
  std::uint32_t time = 0;     // milliseconds since midnight
  bool after_damage = false;  // something was lost right before it
};

/// Reads the records of a part of a log file, in the order of the file.
class Cursor {
 public:
  virtual ~Cursor() = default;

  /// Goes to the next record. False at the end.
  [[nodiscard]] virtual bool next(Head& head) = 0;

  /// True where the record's message begins as a thread's first one does.
  [[nodiscard]] virtual bool begins_thread() const = 0;
  /// The record's message.
  virtual void message(std::wstring& out) = 0;

  /// Where the record ends and the next one is looked for.
  [[nodiscard]] virtual std::uint64_t position() const = 0;
  /// Lets a cursor whose end was `End::growing` go on to a new end.
  virtual void extend(std::uint64_t end, End what) = 0;
};

}  // namespace diagnostics::reader
