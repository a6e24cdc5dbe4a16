#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace attacks {

/// How a run in a child process ended.
struct ForkedRun {
  enum class End { returned, left, crashed } end = End::crashed;
  std::string text;  // what the run told; for a crash how the child ended
};

/// Leaves the child from any of its threads: its run is over, with this text.
using Leave = std::function<void(const std::string& text)>;
/// One run; gives its text.
using Body = std::function<std::string(std::size_t number, const Leave& leave)>;

/// Each child takes every so-many-th number.
inline constexpr std::size_t children_at_once = 2;

/// Runs `body` with each number below `count`, in child processes that take one number after another: so a run may end
/// its process, by `leave` or by a fault, and the next begins in a fresh child. `limit` is for one run. The caller must
/// be single-threaded, and what it has prepared each child has too.
[[nodiscard]] std::vector<ForkedRun> run_forked(std::size_t count, const Body& body, std::chrono::seconds limit);

}  // namespace attacks
