#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "tools/ky/log/findings.h"

namespace log_tool {

/// What a message says about the command that it belongs to.
enum class Frame : std::uint8_t {
  other,
  mention,     // begins with a command's index and name
  begin,       // its first line
  lone_begin,  // the first line of a command that never writes an end line
  end,         // its last line
};

struct Framing {
  Frame frame = Frame::other;
  std::optional<std::int32_t> index;
  std::wstring_view name;            // as the log has it; lives as long as the message
  std::optional<std::int32_t> next;  // the command that follows; of an end line
};

/// Understands the wordings of all commands.
[[nodiscard]] Framing framing_of(std::wstring_view message);

/// A record as the finding of spans sees it.
struct LogLine {
  std::uint32_t thread = 0;
  std::int64_t at = 0;  // milliseconds; never less than that of the thread's record before
  Frame frame = Frame::other;
  std::optional<std::int32_t> index;
  std::uint32_t name = 0;  // equal names have equal numbers
  std::optional<std::int32_t> next;
  Finding finding;
};

/// How a span ended.
enum class Ending : std::uint8_t {
  end_line,
  next_command,  // without an end line, where the thread began another command
  log_end,       // without an end line, and the thread began nothing more
  unwritten,     // its command never writes an end line: no duration is known
};

/// One command's run on one thread.
struct Span {
  std::size_t first = 0;  // positions of its first and last line among the records
  std::size_t last = 0;
  std::int64_t end = 0;  // milliseconds
  Ending ending = Ending::log_end;
  std::optional<std::int32_t> next;
  Finding finding;  // the worst severity of its records, and their last code
};

/// The spans of a run's records, in the order of their beginnings. An end line without a begin line belongs to a
/// command that writes none: its span begins with the first line behind which the thread mentioned no other command.
[[nodiscard]] std::vector<Span> spans_of(std::span<const LogLine> lines);

}  // namespace log_tool
