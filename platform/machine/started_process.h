#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace machine {

/// A program that was started, for the account of a run.
struct StartedProcess {
  std::uint32_t id = 0;
  std::wstring command_line;
  std::wstring folder;  // its current one
  std::wstring image;
  std::optional<std::uint32_t> exit_code;  // none while it runs
  friend bool operator==(const StartedProcess&, const StartedProcess&) = default;
};
using StartedProcesses = std::vector<StartedProcess>;

}  // namespace machine
