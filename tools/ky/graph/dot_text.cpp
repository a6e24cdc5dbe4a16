#include "tools/ky/graph/dot_text.h"

#include <string>
#include <vector>

#include "tools/ky/graph/boxes.h"
#include "tools/ky/graph/layout.h"
#include "tools/ky/graph/markup.h"
#include "tools/ky/graph/words.h"

namespace graph {

namespace {

constexpr std::size_t longest_condition = 34;

std::string node_of(std::size_t block) {
  return 'b' + std::to_string(block);
}

std::string door_of(std::size_t block) {
  return 'd' + std::to_string(block);
}

std::string sign_of(const Arrow& arrow) {
  return 's' + std::to_string(arrow.command) + (arrow.taken ? "t" : "o");
}

std::string condition_of(const Arrow& arrow) {
  return 'w' + std::to_string(arrow.command);
}

std::string terminal(const std::string& text, const std::string& tooltip) {
  return "[shape=box, style=\"rounded,filled\", height=0.25, margin=\"0.15,0.03\", fontcolor=white, fillcolor=\"" +
         std::string(colour::terminal) + "\", color=\"" + std::string(colour::terminal) + "\", label=\"" + text +
         "\", tooltip=\"" + tooltip + "\"]";
}

class Writer {
 public:
  Writer(const Flow& flow, std::string_view title)
      : flow_(flow),
        layout_(lay_out(flow)),
        boxes_(flow_, layout_),
        ways_of_(layout_.blocks.size()),
        lines_into_(layout_.blocks.size()),
        title_(title) {
    for (const Arrow& arrow : layout_.arrows) {
      ways_of_[arrow.from].push_back(&arrow);
      if (arrow.is_line()) ++lines_into_[arrow.to];
    }
  }

  [[nodiscard]] std::string write() {
    heading();
    for (std::size_t block = 0; block < layout_.blocks.size(); ++block) nodes(block);
    for (const Arrow& arrow : layout_.arrows) lines(arrow);
    for (std::size_t block = 0; block < layout_.blocks.size(); ++block) place(block);
    return out_ + "}\n";
  }

 private:
  void line(const std::string& text) { out_ += text + '\n'; }
  void statement(const std::string& text) { line(text + ';'); }

  void heading() {
    line("digraph \"flow\" {");
    line("graph [rankdir=TB, newrank=true, nodesep=0.3, ranksep=0.3, bgcolor=white, labelloc=t, labeljust=l,");
    line("       fontname=\"Helvetica,Arial,sans-serif\", fontsize=11, label=<" + legend() + ">];");
    line("node [shape=plain, fontname=\"Helvetica,Arial,sans-serif\", fontsize=10];");
    line("edge [fontname=\"Helvetica,Arial,sans-serif\", fontsize=10, arrowsize=0.7];");
    statement("start " + terminal("start", "The first command runs first"));
    statement("start -> " + (layout_.blocks.empty() ? sign_of({}) : entry_of(0)) + " [weight=10, color=\"" +
              std::string(colour::line) + "\"]");
    if (layout_.blocks.empty()) statement(sign_of({}) + ' ' + terminal("end", "The script is over"));
  }

  [[nodiscard]] std::string legend() const {
    const std::string entries[] = {
        coloured(colour::line, "&#8595; goes on"),
        coloured(colour::taken, "&#8595; the jump's condition holds"),
        coloured(colour::back, "&#8593; back, a loop"),
        coloured(colour::proviso, italic("only if X") + ": skipped where X is 0"),
        coloured(colour::id, bold("#id") + ": others lead here"),
        coloured(colour::lost, "never reached"),
    };
    std::string cells;
    for (const std::string& entry : entries) cells += "<TD ALIGN=\"LEFT\">" + entry + "</TD>";
    return "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"3\"><TR><TD COLSPAN=\"6\" "
           "ALIGN=\"LEFT\"><FONT POINT-SIZE=\"15\">" +
           bold(in_label(title_)) + "</FONT> &#160; " + std::to_string(flow_.commands.size()) +
           " commands</TD></TR><TR>" + cells + "</TR></TABLE>";
  }

  /// A block with what belongs to it: its door, the signs and conditions on its ways.
  void nodes(std::size_t block) {
    if (const std::string door = boxes_.door(block); !door.empty()) {
      statement(door_of(block) + ' ' + door);
      statement(door_of(block) + " -> " + front_of(block) + " [weight=10, arrowhead=none, color=\"" +
                std::string(colour::line) + "\"]");
    }
    statement(node_of(block) + ' ' + boxes_.node(block));
    for (const Arrow* const arrow : ways_of_[block]) {
      if (!arrow->is_line()) sign(*arrow);
      if (shows_condition(*arrow)) {
        statement(condition_of(*arrow) + " [fontcolor=\"" + std::string(colour::taken) + "\", label=<" +
                  label_of(*arrow) + ">]");
      }
    }
  }

  void sign(const Arrow& arrow) {
    if (arrow.to == the_end) {
      statement(sign_of(arrow) + ' ' + terminal("end", "The script is over"));
      return;
    }
    const std::size_t place = layout_.blocks[arrow.to].begin;
    const script::PlainElement& element = flow_.element(place);
    const script::PlainAttribute* const id = element.find("id");
    const std::string index = std::to_string(flow_.commands[place].index);
    const std::string address =
        id == nullptr ? index : '#' + shortened(id->value, longest_condition) + " (" + index + ')';
    const std::string colour(colour_of(arrow));
    statement(sign_of(arrow) + " [shape=cds, height=0.25, margin=\"0.12,0.04\", color=\"" + colour +
              "\", fontcolor=\"" + colour + "\", href=\"#" + boxes_.anchor_of(place) + "\", tooltip=\"" +
              in_tooltip(everything_of(element, flow_.commands[place].index)) + "\", label=<" + in_label(address) +
              ">]");
  }

  /// On a line that may become long the condition is a node of its own, so that it stands near the jump.
  [[nodiscard]] bool shows_condition(const Arrow& arrow) const {
    return arrow.taken && arrow.is_line() && !boxes_.is_choice(arrow.from);
  }

  /// What stands on the line of a jump; the cells of a choice say it themselves.
  [[nodiscard]] std::string label_of(const Arrow& arrow) const {
    if (!layout_.blocks[arrow.from].decides || boxes_.is_choice(arrow.from)) return {};
    if (!arrow.taken) return "else";
    return in_label(shortened(graph::condition_of(flow_.element(arrow.command)), longest_condition));
  }

  /// Where lines reach a block: its door or its first command.
  [[nodiscard]] std::string entry_of(std::size_t block) const {
    if (!boxes_.door(block).empty()) return door_of(block);
    return front_of(block);
  }

  [[nodiscard]] std::string front_of(std::size_t block) const {
    if (!boxes_.is_choice(block)) return node_of(block);
    return node_of(block) + ':' + boxes_.anchor_of(layout_.blocks[block].begin) + ":n";
  }

  [[nodiscard]] std::string exit_of(const Arrow& arrow) const {
    if (!boxes_.is_choice(arrow.from)) return node_of(arrow.from);
    return node_of(arrow.from) + ':' + (arrow.taken ? boxes_.anchor_of(arrow.command) : "else") + ":s";
  }

  [[nodiscard]] std::string_view colour_of(const Arrow& arrow) const {
    if (!flow_.commands[arrow.command].reachable) return colour::lost;
    if (arrow.back) return colour::back;
    return arrow.taken ? colour::taken : colour::line;
  }

  void lines(const Arrow& arrow) {
    const std::string colour(colour_of(arrow));
    const std::string style = "color=\"" + colour + "\", fontcolor=\"" + colour + '"';
    const std::string from = exit_of(arrow);
    if (shows_condition(arrow)) {
      statement(from + " -> " + condition_of(arrow) + " [arrowhead=none, " + style + ']');
      statement(condition_of(arrow) + " -> " + entry_of(arrow.to) + " [" + style + ']');
      return;
    }
    const std::string label = label_of(arrow).empty() ? "" : ", label=<&#160;" + label_of(arrow) + '>';
    const bool straight = !arrow.taken && !boxes_.is_choice(arrow.from) &&
                          (!arrow.is_line() || (arrow.to == arrow.from + 1 && lines_into_[arrow.to] < 3));
    statement(from + " -> " + (arrow.is_line() ? entry_of(arrow.to) : sign_of(arrow)) +
              " [weight=" + (straight ? "10" : "2") + ", " + style + label + ']');
    if (arrow.back && !arrow.cut) {
      // Turned round, so that the loop's head stays above its body; from the sign, which stands below all that the line
      // would cross.
      statement(entry_of(arrow.to) + " -> " + sign_of(arrow) + " [dir=back, penwidth=1.4, " + style + ']');
    }
  }

  /// What helps the drawing without being seen.
  void place(std::size_t block) {
    // What nothing leads to stands below what is before it in the document.
    if (block > 0 && lines_into_[block] == 0) {
      statement(node_of(block - 1) + " -> " + entry_of(block) + " [style=invis, weight=0]");
    }
    if (!boxes_.is_choice(block)) return;
    // Where the jumps of a choice alone lead stands side by side, in their order.
    std::string row;
    for (const Arrow* const arrow : ways_of_[block]) {
      if (!arrow->is_line() || lines_into_[arrow->to] != 1) continue;
      row += (row.empty() ? "" : " -> ") + node_of(arrow->to);
    }
    if (row.find(' ') != std::string::npos) line("{ rank=same; " + row + " [style=invis]; }");
  }

  const Flow& flow_;
  const Layout layout_;
  const Boxes boxes_;
  std::vector<std::vector<const Arrow*>> ways_of_;  // of each block
  std::vector<std::size_t> lines_into_;             // how many lead to a block
  std::string title_;
  std::string out_;
};

}  // namespace

std::string dot_text(const Flow& flow, std::string_view title) {
  return Writer(flow, title).write();
}

}  // namespace graph
