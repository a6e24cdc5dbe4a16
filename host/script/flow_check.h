#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

/// Where one command stands and where it may go.
struct FlowPoint {
  std::int32_t index = 0;
  std::int32_t next = -1;                             // negative: the index that follows
  std::optional<std::int32_t> target = std::nullopt;  // of a jump
};

/// A place in the flow that leads nowhere.
struct FlowFault {
  enum class Kind : std::uint8_t { index_out_of_range, index_taken, lost_way };
  Kind kind = Kind::lost_way;
  std::size_t point = 0;
  const char* attribute = "";  // empty: the way to the index that follows
  std::string reason;
};

/// Checks that all indexes differ and lie between 0 and 2^31 - 2, and that every way leads to a command or to the index
/// behind the greatest, where the script ends. Points are the script's elements in their order.
[[nodiscard]] std::vector<FlowFault> check_flow(std::span<const FlowPoint> points);

}  // namespace host
