#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/script/flow_check.h"
#include "tools/ky/script/plain_script.h"

namespace script {

/// The attribute that names an element for its author alone.
inline constexpr std::string_view id_attribute = "id";

/// The id that no element has: the index behind the greatest, where the script ends.
inline constexpr std::string_view end_id = "end";

/// True for the attributes that hold the index of another command.
[[nodiscard]] constexpr bool is_way(std::string_view attribute) {
  return attribute == "target" || attribute == "next";
}

/// The number that `text` is as a whole, read as commands do: "0x" and a leading "0" change the radix. Nothing for any
/// other text, though a command would take it for 0.
[[nodiscard]] std::optional<std::int32_t> whole_integer(std::string_view text);

/// How a script's elements hang together, and what is wrong with them.
struct Structure {
  PlainScript script;  // without ids, every `#id` that is known replaced by the element's index in decimal
  std::vector<host::FlowPoint> points;  // one an element
  std::vector<Fault> faults;            // all that keeps the script from being compiled, in no order
  bool ways_known = true;               // every way in `points` leads to a command or to the end
};
[[nodiscard]] Structure examine(PlainScript script);

/// The script without ids, every `#id` replaced by the element's index in decimal. Throws a `ScriptError` with all
/// faults of the script.
[[nodiscard]] PlainScript resolve(const PlainScript& script);

}  // namespace script
