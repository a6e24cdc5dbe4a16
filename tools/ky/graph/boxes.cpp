#include "tools/ky/graph/boxes.h"

#include "tools/ky/graph/markup.h"
#include "tools/ky/graph/words.h"

namespace graph {

namespace {

constexpr std::size_t longest_subject = 44;
constexpr std::size_t longest_name = 34;
constexpr std::size_t longest_title = 60;

std::string attribute(const char* name, std::string_view value) {
  return ' ' + std::string(name) + "=\"" + std::string(value) + '"';
}

std::string table(const std::string& attributes, const std::string& rows) {
  return "<TABLE CELLSPACING=\"0\" CELLPADDING=\"3\"" + attributes + ">\n" + rows + "</TABLE>";
}

// What a wide title leaves over is shared out evenly by columns: most of it shall go to the last cell of a row.
constexpr std::string_view columns_of_subject = "30";

std::string frame(std::string_view line, const std::string& rows) {
  return table(attribute("BORDER", "1") + attribute("CELLBORDER", "0") + attribute("COLOR", line) +
                   attribute("BGCOLOR", "white"),
               rows);
}

std::string band(std::string_view ground, const std::string& links, const std::string& markup) {
  return "<TR><TD ALIGN=\"LEFT\"" + attribute("BGCOLOR", ground) + links + '>' + markup + "</TD></TR>\n";
}

}  // namespace

Boxes::Boxes(const Flow& flow, const Layout& layout) : flow_(flow), layout_(layout), signs_to_(flow.commands.size()) {
  for (const Arrow& arrow : layout.arrows) {
    if (!arrow.cut || arrow.to == the_end) continue;
    signs_to_[layout.blocks[arrow.to].begin].push_back(flow.commands[arrow.command].index);
  }
}

std::string Boxes::anchor_of(std::size_t command) const {
  return 'c' + std::to_string(flow_.commands[command].index);
}

bool Boxes::is_choice(std::size_t block) const {
  return layout_.blocks[block].decides && layout_.blocks[block].end - layout_.blocks[block].begin > 1;
}

std::string Boxes::node(std::size_t block) const {
  if (!layout_.blocks[block].decides) return run(block);
  return is_choice(block) ? choice(block) : decision(block);
}

std::string Boxes::run(std::size_t block) const {
  const Block& at = layout_.blocks[block];
  std::string parts = title_row(block);
  std::string rows;
  const auto close_rows = [&parts, &rows] {
    const std::string inner = table(attribute("BORDER", "0") + attribute("CELLBORDER", "0"), rows);
    if (!rows.empty()) parts += "<TR><TD ALIGN=\"LEFT\" CELLPADDING=\"0\">" + inner + "</TD></TR>\n";
    rows.clear();
  };
  for (std::size_t i = at.begin; i < at.end; ++i) {
    const std::string arrivals = arrivals_row(i);
    if (!arrivals.empty()) close_rows();
    parts += arrivals;
    rows += row(i);
  }
  close_rows();
  return "[label=<" + frame(flow_.commands[at.begin].reachable ? colour::frame : colour::lost, parts) + ">]";
}

std::string Boxes::row(std::size_t command) const {
  const script::PlainElement& element = flow_.element(command);
  const bool reachable = flow_.commands[command].reachable;
  const auto cell = [&](const char* align, const std::string& more, const std::string& markup) {
    return "<TD" + attribute("ALIGN", align) + more + links_of(command) + '>' + markup + "</TD>";
  };
  const std::string_view text = reachable ? colour::text : colour::lost;
  std::string subject = proviso(command);
  if (!subject.empty()) subject += " &#160;";
  subject += coloured(text, in_label(shortened(subject_of(element), longest_subject))) + ' ';
  return "<TR>" +
         cell("RIGHT", attribute("ID", anchor_of(command)),
              coloured(reachable ? colour::quiet : colour::lost, std::to_string(flow_.commands[command].index))) +
         cell("LEFT", "", coloured(text, bold(in_label(element.name)))) +
         cell("LEFT", attribute("COLSPAN", columns_of_subject), subject) + "</TR>\n";
}

std::string Boxes::decision(std::size_t block) const {
  const std::size_t command = layout_.blocks[block].begin;
  return "[shape=hexagon, style=filled, height=0.3, margin=\"0.02,0.02\", fillcolor=\"" +
         std::string(colour::jump_ground) + "\", color=\"" + std::string(colour::jump_frame) + "\", id=\"" +
         anchor_of(command) + "\", tooltip=\"" +
         in_tooltip(everything_of(flow_.element(command), flow_.commands[command].index)) + "\", label=<" +
         jump_text(command, true) + ">]";
}

std::string Boxes::choice(std::size_t block) const {
  const Block& at = layout_.blocks[block];
  std::string cells;
  for (std::size_t i = at.begin; i < at.end; ++i) {
    const std::string condition = in_label(shortened(condition_of(flow_.element(i)), longest_name));
    cells += "<TD" + attribute("PORT", anchor_of(i)) + attribute("ID", anchor_of(i)) + links_of(i) + '>' +
             jump_text(i, i != at.begin) + "<BR/>" + coloured(colour::taken, condition) + "</TD>\n";
  }
  const std::string look = attribute("BORDER", "1") + attribute("CELLBORDER", "1") +
                           attribute("COLOR", colour::jump_frame) + attribute("BGCOLOR", colour::jump_ground);
  return "[label=<" + table(look, "<TR>" + cells + "<TD PORT=\"else\">else</TD></TR>\n") + ">]";
}

std::string Boxes::door(std::size_t block) const {
  const Block& at = layout_.blocks[block];
  if (!at.decides) return {};
  std::string rows = title_row(block);
  if (is_choice(block)) rows += arrivals_row(at.begin);
  return rows.empty() ? rows : "[label=<" + frame(colour::frame, rows) + ">]";
}

std::string Boxes::jump_text(std::size_t command, bool with_arrivals) const {
  std::string text = coloured(colour::quiet, std::to_string(flow_.commands[command].index)) + ' ' +
                     bold(in_label(flow_.element(command).name));
  const std::string arrivals = with_arrivals ? arrivals_of(command) : std::string();
  if (!arrivals.empty()) text = arrivals + "<BR/>" + text;
  if (const std::string only_if = proviso(command); !only_if.empty()) text += "<BR/>" + only_if;
  return text;
}

std::string Boxes::proviso(std::size_t command) const {
  const std::string text = in_label(shortened(proviso_of(flow_.element(command)), longest_name));
  return coloured(flow_.commands[command].reachable ? colour::proviso : colour::lost, italic(text));
}

std::string Boxes::links_of(std::size_t command) const {
  // A cell has a tooltip only where it has a link.
  return attribute("HREF", '#' + anchor_of(command)) +
         attribute("TITLE", in_tooltip(everything_of(flow_.element(command), flow_.commands[command].index)));
}

std::string Boxes::title_row(std::size_t block) const {
  const std::size_t begin = layout_.blocks[block].begin;
  const Section& section = flow_.sections[layout_.blocks[block].section];
  if (section.begin != begin || section.title.empty()) return {};
  const std::string links = attribute("HREF", '#' + anchor_of(begin)) + attribute("TITLE", in_tooltip(section.title));
  return band(colour::title_ground, links, bold(in_label(beginning_of(section.title, longest_title))));
}

std::string Boxes::arrivals_of(std::size_t command) const {
  const script::PlainAttribute* const id = flow_.element(command).find("id");
  std::string arrivals = id == nullptr ? "" : bold(in_label('#' + shortened(id->value, longest_name)));
  std::string from;
  for (const std::int32_t index : signs_to_[command]) from += (from.empty() ? "from " : ", ") + std::to_string(index);
  if (!arrivals.empty() && !from.empty()) arrivals += " &#160;";
  return coloured(flow_.commands[command].reachable ? colour::id : colour::lost,
                  arrivals + shortened(from, longest_name));
}

std::string Boxes::arrivals_row(std::size_t command) const {
  const std::string arrivals = arrivals_of(command);
  return arrivals.empty() ? arrivals : band(colour::id_ground, "", arrivals);
}

}  // namespace graph
