#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/ky/graph/flow.h"
#include "tools/ky/graph/layout.h"

namespace graph {

/// Writes the boxes of a layout as nodes of Graphviz' language. A command's place in the picture has an anchor, the
/// letter "c" and its index, that links lead to.
class Boxes {
 public:
  /// Both outlive it.
  Boxes(const Flow& flow, const Layout& layout);

  /// The node of a block, in whichever form it has. Cells of jumps that stand side by side have their anchor as port,
  /// the cell behind them has "else".
  [[nodiscard]] std::string node(std::size_t block) const;

  /// True where a block holds several jumps, side by side.
  [[nodiscard]] bool is_choice(std::size_t block) const;

  /// A sign above the box of jumps, for what they have no room for: the title and, of a choice, the id. All that leads
  /// to the box leads there. Empty for a box that needs none.
  [[nodiscard]] std::string door(std::size_t block) const;

  [[nodiscard]] std::string anchor_of(std::size_t command) const;

 private:
  [[nodiscard]] std::string run(std::size_t block) const;
  [[nodiscard]] std::string row(std::size_t command) const;
  [[nodiscard]] std::string decision(std::size_t block) const;
  [[nodiscard]] std::string choice(std::size_t block) const;
  [[nodiscard]] std::string jump_text(std::size_t command, bool with_arrivals) const;
  [[nodiscard]] std::string proviso(std::size_t command) const;
  [[nodiscard]] std::string links_of(std::size_t command) const;
  [[nodiscard]] std::string title_row(std::size_t block) const;
  [[nodiscard]] std::string arrivals_of(std::size_t command) const;
  [[nodiscard]] std::string arrivals_row(std::size_t command) const;

  const Flow& flow_;
  const Layout& layout_;
  std::vector<std::vector<std::int32_t>> signs_to_;  // a command's: the indexes of those that lead here without a line
};

}  // namespace graph
