#pragma once

#include <string>
#include <vector>

namespace machine {

/// A move, or a deletion where `to` is empty, that is booked for the next start. Full paths.
struct PendingMove {
  std::wstring from;
  std::wstring to;
  bool replace = false;
  friend bool operator==(const PendingMove&, const PendingMove&) = default;
};
using PendingMoves = std::vector<PendingMove>;

}  // namespace machine
