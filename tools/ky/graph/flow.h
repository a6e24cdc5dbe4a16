#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tools/ky/script/plain_script.h"

namespace graph {

/// Where the script is over, in place of a command.
inline constexpr std::size_t the_end = std::numeric_limits<std::size_t>::max();

/// One command and its ways. Commands are named by their place in the document.
struct Command {
  std::int32_t index = 0;
  std::size_t onward = the_end;                      // its `next`, or the command of the index that follows
  std::optional<std::size_t> target = std::nullopt;  // of a jump
  bool reachable = false;                            // from the first command, whatever conditions turn out to be
};

/// A stretch of commands that has a title: a comment behind an empty line, or before the first command, opens one.
struct Section {
  std::string title;  // the comment in one line; empty for what stands before the first title
  std::size_t begin = 0;
};

/// The flow of a whole script.
struct Flow {
  script::PlainScript script;
  std::vector<Command> commands;  // one an element
  std::vector<Section> sections;  // in document order, the first beginning at 0; none for an empty script

  [[nodiscard]] const script::PlainElement& element(std::size_t command) const { return script.elements[command]; }
};

/// Throws a `ScriptError` for a script that would not compile.
[[nodiscard]] Flow flow_of(script::PlainScript script);

}  // namespace graph
