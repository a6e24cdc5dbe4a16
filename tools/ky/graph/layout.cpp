#include "tools/ky/graph/layout.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace graph {

namespace {

/// More jumps than these side by side are wider than a page.
constexpr std::size_t most_jumps_in_a_block = 6;
// Lengths are in rows of a box. A longer line leaves the window.
constexpr std::size_t longest_jump = 10;
constexpr std::size_t longest_way_on = 30;
constexpr std::size_t longest_way_back = 80;
constexpr std::size_t rows_of_decision = 3;
constexpr std::size_t rows_between = 2;

/// True for the commands that something leads to but the command before them.
std::vector<bool> entered_commands(const Flow& flow) {
  std::vector<bool> entered(flow.commands.size(), false);
  const auto enter = [&entered](std::size_t place) {
    if (place != the_end) entered[place] = true;
  };
  for (std::size_t i = 0; i < flow.commands.size(); ++i) {
    const Command& command = flow.commands[i];
    if (command.onward != i + 1) enter(command.onward);
    if (command.target.has_value()) enter(*command.target);
  }
  return entered;
}

std::vector<Block> blocks_of(const Flow& flow) {
  const std::vector<bool> entered = entered_commands(flow);
  std::vector<Block> blocks;
  std::size_t section = 0;
  for (std::size_t i = 0; i < flow.commands.size(); ++i) {
    const bool opens_section = section + 1 < flow.sections.size() && flow.sections[section + 1].begin == i;
    section += opens_section ? 1 : 0;
    const Command& command = flow.commands[i];
    const bool decides = command.target.has_value();
    const bool goes_on = !blocks.empty() && !opens_section && !entered[i] && flow.commands[i - 1].onward == i &&
                         blocks.back().decides == decides && command.reachable == flow.commands[i - 1].reachable &&
                         !(decides && blocks.back().end - blocks.back().begin == most_jumps_in_a_block);
    if (!goes_on) blocks.push_back({decides, i, i, section});
    blocks.back().end = i + 1;
  }
  return blocks;
}

std::vector<Arrow> arrows_of(const Flow& flow, const std::vector<Block>& blocks) {
  std::vector<std::size_t> block_of(flow.commands.size());
  for (std::size_t b = 0; b < blocks.size(); ++b) {
    for (std::size_t i = blocks[b].begin; i < blocks[b].end; ++i) block_of[i] = b;
  }
  std::vector<Arrow> arrows;
  const auto add = [&](std::size_t command, std::size_t to, bool taken) {
    const std::size_t block = to == the_end ? the_end : block_of[to];
    arrows.push_back({command, block_of[command], block, taken, false, to == the_end});
  };
  for (std::size_t i = 0; i < flow.commands.size(); ++i) {
    if (flow.commands[i].target.has_value()) add(i, *flow.commands[i].target, true);
    if (i + 1 == blocks[block_of[i]].end) add(i, flow.commands[i].onward, false);
  }
  return arrows;
}

/// Walks the blocks depth first: finds the ways that close loops, and an order in which all others lead forwards.
class Walk {
 public:
  explicit Walk(Layout& layout) : arrows_(layout.arrows), ways_(layout.blocks.size()), state_(layout.blocks.size()) {
    for (std::size_t a = 0; a < arrows_.size(); ++a) ways_[arrows_[a].from].push_back(a);
    for (std::size_t block = 0; block < layout.blocks.size(); ++block) from(block);
    std::reverse(order_.begin(), order_.end());
  }

  /// Blocks, each before those that it leads to without a loop.
  [[nodiscard]] const std::vector<std::size_t>& order() const { return order_; }
  /// The places in `arrows` of what leads out of a block.
  [[nodiscard]] const std::vector<std::size_t>& ways_of(std::size_t block) const { return ways_[block]; }

 private:
  enum class State : std::uint8_t { fresh, open, done };

  /// Without recursion: a script may be longer than the stack is deep.
  void from(std::size_t start) {
    if (state_[start] != State::fresh) return;
    std::vector<std::pair<std::size_t, std::size_t>> path{{start, 0}};
    state_[start] = State::open;
    while (!path.empty()) {
      auto& [block, next_way] = path.back();
      if (next_way == ways_[block].size()) {
        state_[block] = State::done;
        order_.push_back(block);
        path.pop_back();
        continue;
      }
      Arrow& arrow = arrows_[ways_[block][next_way++]];
      if (arrow.to == the_end) continue;
      arrow.back = state_[arrow.to] == State::open;
      if (state_[arrow.to] != State::fresh) continue;
      state_[arrow.to] = State::open;
      path.emplace_back(arrow.to, 0);
    }
  }

  std::vector<Arrow>& arrows_;
  std::vector<std::vector<std::size_t>> ways_;
  std::vector<State> state_;
  std::vector<std::size_t> order_;
};

std::size_t rows_of(const Block& block) {
  return (block.decides ? rows_of_decision : block.end - block.begin) + rows_between;
}

/// A box stands below all that lead to it, so a line is long where another way there is longer.
void cut_long_lines(Layout& layout) {
  const Walk walk(layout);
  std::vector<std::size_t> top(layout.blocks.size(), 0);
  const auto bottom = [&](std::size_t block) { return top[block] + rows_of(layout.blocks[block]); };
  for (const std::size_t block : walk.order()) {
    for (const std::size_t way : walk.ways_of(block)) {
      const Arrow& arrow = layout.arrows[way];
      if (arrow.is_line()) top[arrow.to] = std::max(top[arrow.to], bottom(block));
    }
  }
  for (Arrow& arrow : layout.arrows) {
    if (arrow.to == the_end) continue;
    const std::size_t longest = arrow.taken ? longest_jump : longest_way_on;
    arrow.cut = arrow.back ? bottom(arrow.from) > top[arrow.to] + longest_way_back
                           : top[arrow.to] > bottom(arrow.from) + longest;
  }
}

}  // namespace

Layout lay_out(const Flow& flow) {
  Layout layout{blocks_of(flow), {}};
  layout.arrows = arrows_of(flow, layout.blocks);
  cut_long_lines(layout);
  return layout;
}

}  // namespace graph
