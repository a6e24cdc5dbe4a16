#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "host/script/flow_check.h"

namespace check {

inline constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

/// Where a run may go from each command, by the commands' numbers in the document.
struct Flow {
  struct Ways {
    std::array<std::size_t, 2> to = {nowhere, nowhere};  // the following command or `next`; a jump's target
    bool ends = false;                                   // one of them leads to the script's end
  };
  std::vector<Ways> ways;
};

/// Of points in which `host::check_flow` finds no fault.
[[nodiscard]] Flow flow_of(std::span<const host::FlowPoint> points);

/// The commands that a run can reach, in groups whose members all lead to each other: a loop, or a single command.
struct FlowGroups {
  std::vector<std::size_t> of;                    // a command's group; `nowhere` where no run gets
  std::vector<std::vector<std::size_t>> members;  // ascending; every way leads to the same group or to one before it
  std::vector<bool> loops;
};
[[nodiscard]] FlowGroups group(const Flow& flow);

}  // namespace check
