#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/ky/check/commands.h"
#include "tools/ky/check/flow.h"

namespace check {

/// How a command comes to read a key.
enum class ReadAs : std::uint8_t {
  variable,         // `[Name]` in a value that is expanded
  xpath_variable,   // the same in an XPath, where it may be a predicate
  hidden_variable,  // in an XPath behind the bracket of a predicate: the expansion does not see it
  needed_text,      // a text without which the command does not do its work
  value,            // an integer, or a text that may be missing
};

struct KeyRead {
  std::string key;  // with prefix
  ReadAs as = ReadAs::value;
  const KnownAttribute* attribute = nullptr;  // null for a key of fixed name
  bool put = false;                           // something on some way to the command puts it, or the host has
};

/// The keys of one command. What it writes is there only after it has read.
struct KeyTraffic {
  std::vector<KeyRead> reads;
  std::vector<std::string> writes;
};

/// They point into `command`, which outlives them.
[[nodiscard]] KeyTraffic traffic_of(const KnownCommand& command);

/// Finds out which reads have a put before them on some way. Commands that no run reaches are left as they are.
void find_puts(const Flow& flow, const FlowGroups& groups, std::vector<KeyTraffic>& traffic);

}  // namespace check
