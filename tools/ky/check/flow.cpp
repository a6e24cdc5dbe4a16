#include "tools/ky/check/flow.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace check {

namespace {

/// Finds strongly connected components by Tarjan's walk, with a stack of its own: scripts may be long.
class Grouping {
 public:
  explicit Grouping(const Flow& flow) : flow_(flow), order_(flow.ways.size(), nowhere), lowest_(flow.ways.size()) {
    groups_.of.assign(flow.ways.size(), nowhere);
  }

  [[nodiscard]] FlowGroups run() {
    if (!flow_.ways.empty()) enter(0);
    while (!path_.empty()) {
      Step& step = path_.back();
      if (step.way < flow_.ways[step.command].to.size()) {
        follow(step.command, flow_.ways[step.command].to[step.way++]);
      } else {
        leave(step.command);
      }
    }
    return std::move(groups_);
  }

 private:
  struct Step {
    std::size_t command;
    std::size_t way;
  };

  void enter(std::size_t command) {
    order_[command] = lowest_[command] = entered_++;
    open_.push_back(command);
    path_.push_back({command, 0});
  }

  void follow(std::size_t from, std::size_t to) {
    if (to == nowhere) return;
    if (order_[to] == nowhere) {
      enter(to);
    } else if (groups_.of[to] == nowhere) {
      lowest_[from] = std::min(lowest_[from], order_[to]);
    }
  }

  void leave(std::size_t command) {
    path_.pop_back();
    if (!path_.empty()) {
      std::size_t& below = lowest_[path_.back().command];
      below = std::min(below, lowest_[command]);
    }
    if (lowest_[command] == order_[command]) close(command);
  }

  /// What was opened since `first`, and is no part of a group yet, is one.
  void close(std::size_t first) {
    const auto begin = std::find(open_.rbegin(), open_.rend(), first).base() - 1;
    std::vector<std::size_t> members(begin, open_.end());
    open_.erase(begin, open_.end());
    std::sort(members.begin(), members.end());
    for (const std::size_t member : members) groups_.of[member] = groups_.members.size();
    const auto& to = flow_.ways[first].to;
    groups_.loops.push_back(members.size() > 1 || std::find(to.begin(), to.end(), first) != to.end());
    groups_.members.push_back(std::move(members));
  }

  const Flow& flow_;
  FlowGroups groups_;
  std::vector<std::size_t> order_;
  std::vector<std::size_t> lowest_;
  std::vector<std::size_t> open_;
  std::vector<Step> path_;
  std::size_t entered_ = 0;
};

}  // namespace

Flow flow_of(std::span<const host::FlowPoint> points) {
  std::unordered_map<std::int32_t, std::size_t> owners;
  owners.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) owners.emplace(points[i].index, i);
  Flow flow;
  flow.ways.resize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    Flow::Ways& ways = flow.ways[i];
    const auto lead = [&](std::size_t way, std::int32_t index) {
      const auto owner = owners.find(index);
      if (owner == owners.end()) {
        ways.ends = true;
      } else {
        ways.to[way] = owner->second;
      }
    };
    lead(0, points[i].next >= 0 ? points[i].next : points[i].index + 1);
    if (points[i].target.has_value()) lead(1, *points[i].target);
  }
  return flow;
}

FlowGroups group(const Flow& flow) {
  return Grouping(flow).run();
}

}  // namespace check
