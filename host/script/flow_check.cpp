#include "host/script/flow_check.h"

#include <algorithm>
#include <limits>
#include <memory_resource>
#include <unordered_map>

namespace host {

namespace {

std::string no_command_at(std::int32_t index) {
  return "no command has index " + std::to_string(index);
}

}  // namespace

std::vector<FlowFault> check_flow(std::span<const FlowPoint> points) {
  using Kind = FlowFault::Kind;
  std::vector<FlowFault> faults;
  std::pmr::monotonic_buffer_resource memory;
  std::pmr::unordered_map<std::int32_t, std::size_t> owners(&memory);
  owners.reserve(points.size());
  std::int32_t last = -1;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const std::int32_t index = points[i].index;
    const auto [owner, fresh] = owners.emplace(index, i);
    if (index < 0 || index == std::numeric_limits<std::int32_t>::max()) {
      faults.push_back({Kind::index_out_of_range, i, "index", "is out of range"});
    } else if (!fresh) {
      faults.push_back(
          {Kind::index_taken, i, "index",
           "element " + std::to_string(owner->second + 1) + " has index " + std::to_string(index) + " already"});
    }
    last = std::max(last, index);
  }
  // Running past the greatest index is how a script ends.
  const auto leads_somewhere = [&owners, last](std::int32_t index) {
    return index >= 0 && (owners.contains(index) || index - 1 == last);
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    const FlowPoint& point = points[i];
    if (point.target.has_value() && !leads_somewhere(*point.target)) {
      faults.push_back({Kind::lost_way, i, "target", no_command_at(*point.target)});
    }
    if (point.next >= 0) {
      if (!leads_somewhere(point.next)) faults.push_back({Kind::lost_way, i, "next", no_command_at(point.next)});
    } else if (point.index >= 0 && point.index < std::numeric_limits<std::int32_t>::max() &&
               !leads_somewhere(point.index + 1)) {
      faults.push_back(
          {Kind::lost_way, i, "", "goes on to the index that follows it, and " + no_command_at(point.index + 1)});
    }
  }
  return faults;
}

}  // namespace host
