#pragma once

#include <cstddef>
#include <vector>

#include "tools/ky/graph/flow.h"

namespace graph {

/// What is drawn as one box: commands that follow each other and are entered at the first alone.
struct Block {
  bool decides = false;  // holds jumps, and nothing else: a straight run otherwise
  std::size_t begin = 0;
  std::size_t end = 0;  // behind the last command
  std::size_t section = 0;
};

/// A way from a block's command to the beginning of another, or to the end of the script.
struct Arrow {
  std::size_t command = 0;   // whose way it is
  std::size_t from = 0;      // its block
  std::size_t to = the_end;  // a block
  bool taken = false;        // by a jump whose condition holds
  bool back = false;         // it closes a loop
  bool cut = false;  // it ends in a sign that names where it leads: a line would be too long, or leads to the end

  /// Drawn as a line that leads downwards.
  [[nodiscard]] bool is_line() const { return !back && !cut; }
};

struct Layout {
  std::vector<Block> blocks;  // in document order
  std::vector<Arrow> arrows;  // in the order of their commands; what is taken before what goes on
};

/// Decides what is drawn together, and which ways become lines.
[[nodiscard]] Layout lay_out(const Flow& flow);

}  // namespace graph
