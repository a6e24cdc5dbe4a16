#include "tools/ky/check/flow_rules.h"

#include <algorithm>
#include <string>

namespace check {

namespace {

std::string commands_in_words(std::size_t count) {
  return count == 1 ? "1 command" : std::to_string(count) + " commands";
}

/// Marks what `first` leads to, itself included, and counts what was not marked before.
std::size_t mark_reached(const Flow& flow, std::size_t first, std::vector<bool>& reached) {
  std::vector<std::size_t> open = {first};
  std::size_t count = 0;
  while (!open.empty()) {
    const std::size_t command = open.back();
    open.pop_back();
    if (reached[command]) continue;
    reached[command] = true;
    ++count;
    for (const std::size_t to : flow.ways[command].to) {
      if (to != nowhere) open.push_back(to);
    }
  }
  return count;
}

void check_order(const script::PlainScript& script, std::span<const host::FlowPoint> points,
                 std::vector<Finding>& findings) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const script::PlainAttribute* const index = script.elements[i].find("index");
    if (index == nullptr || points[i].index >= points[i - 1].index) continue;
    findings.push_back({index->at, rule::descending_index,
                        "\"index\" is " + std::to_string(points[i].index) + ", and the element before it has " +
                            std::to_string(points[i - 1].index)});
  }
}

void check_reach(const script::PlainScript& script, const Flow& flow, const FlowGroups& groups,
                 std::vector<Finding>& findings) {
  std::vector<bool> reached(groups.of.size());
  std::transform(groups.of.begin(), groups.of.end(), reached.begin(),
                 [](std::size_t group) { return group != nowhere; });
  for (std::size_t i = 0; i < reached.size(); ++i) {
    if (reached[i]) continue;
    const std::size_t behind = mark_reached(flow, i, reached) - 1;
    std::string message = "no run gets to <" + script.elements[i].name + ">";
    if (behind > 0) message += ", nor to " + commands_in_words(behind) + " behind it";
    findings.push_back({script.elements[i].at, rule::unreachable, std::move(message)});
  }
}

bool can_be_left(const Flow& flow, const FlowGroups& groups, std::size_t group) {
  const std::vector<std::size_t>& members = groups.members[group];
  return std::any_of(members.begin(), members.end(), [&](std::size_t member) {
    const Flow::Ways& ways = flow.ways[member];
    return ways.ends || std::any_of(ways.to.begin(), ways.to.end(),
                                    [&](std::size_t to) { return to != nowhere && groups.of[to] != group; });
  });
}

void check_loops(const script::PlainScript& script, const Flow& flow, const FlowGroups& groups,
                 std::vector<Finding>& findings) {
  for (std::size_t group = 0; group < groups.members.size(); ++group) {
    if (!groups.loops[group] || can_be_left(flow, groups, group)) continue;
    const std::vector<std::size_t>& members = groups.members[group];
    const script::PlainElement& first = script.elements[members.front()];
    findings.push_back(
        {first.at, rule::endless_loop,
         "<" + first.name + "> begins a loop of " + commands_in_words(members.size()) + " that no way leads out of"});
  }
}

}  // namespace

void check_flow(const script::PlainScript& script, std::span<const host::FlowPoint> points, const Flow& flow,
                const FlowGroups& groups, std::vector<Finding>& findings) {
  check_order(script, points, findings);
  check_reach(script, flow, groups, findings);
  check_loops(script, flow, groups, findings);
}

}  // namespace check
