#include "tools/ky/graph/flow.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "tools/ky/script/resolved_script.h"

namespace graph {

namespace {

std::vector<Command> commands_of(const std::vector<host::FlowPoint>& points) {
  std::unordered_map<std::int32_t, std::size_t> places;
  for (std::size_t i = 0; i < points.size(); ++i) places.emplace(points[i].index, i);
  const auto place_of = [&places](std::int32_t index) {
    const auto found = places.find(index);
    return found != places.end() ? found->second : the_end;
  };
  std::vector<Command> commands;
  for (const host::FlowPoint& point : points) {
    Command command{point.index, place_of(point.next >= 0 ? point.next : point.index + 1)};
    if (point.target.has_value()) command.target = place_of(*point.target);
    commands.push_back(command);
  }
  return commands;
}

void mark_reachable(std::vector<Command>& commands) {
  std::vector<std::size_t> open;
  const auto reach = [&](std::size_t place) {
    if (place == the_end || commands[place].reachable) return;
    commands[place].reachable = true;
    open.push_back(place);
  };
  if (!commands.empty()) reach(0);
  while (!open.empty()) {
    const Command at = commands[open.back()];
    open.pop_back();
    reach(at.onward);
    if (at.target.has_value()) reach(*at.target);
  }
}

/// White space as one blank each, none at the ends.
std::string in_one_line(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (blank && (line.empty() || line.back() == ' ')) continue;
    line += blank ? ' ' : c;
  }
  if (line.ends_with(' ')) line.pop_back();
  return line;
}

std::size_t last_line_of(const script::PlainElement& element) {
  return element.attributes.empty() ? element.at.line : element.attributes.back().at.line;
}

std::size_t last_line_of(const script::PlainComment& comment) {
  return comment.at.line + static_cast<std::size_t>(std::count(comment.text.begin(), comment.text.end(), '\n'));
}

/// What a comment says to readers: one for `ky script check` says nothing.
std::string said_by(const script::PlainComment& comment) {
  std::string said = in_one_line(comment.text);
  return said.starts_with("check:") ? std::string() : said;
}

std::vector<Section> sections_of(const script::PlainScript& script) {
  std::vector<Section> sections;
  std::size_t line_above = 0;
  for (std::size_t i = 0; i < script.elements.size(); ++i) {
    const script::PlainElement& element = script.elements[i];
    std::string title;
    for (const script::PlainComment& comment : element.comments) {
      // Without an empty line above it, a comment is a remark on what follows, or goes on with the one before.
      const bool opens = i == 0 || comment.at.line > line_above + 1;
      if (opens) title.clear();
      if (opens || !title.empty()) title += said_by(comment) + ' ';
      line_above = last_line_of(comment);
    }
    line_above = last_line_of(element);
    title = in_one_line(title);
    if (i == 0 || !title.empty()) sections.push_back({std::move(title), i});
  }
  return sections;
}

}  // namespace

Flow flow_of(script::PlainScript script) {
  script::Structure structure = script::examine(script);
  if (!structure.faults.empty()) throw script::ScriptError(script.file, std::move(structure.faults));
  Flow flow{std::move(script), commands_of(structure.points), {}};
  mark_reachable(flow.commands);
  flow.sections = sections_of(flow.script);
  return flow;
}

}  // namespace graph
