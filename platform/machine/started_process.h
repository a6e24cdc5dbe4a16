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
  std::uint32_t parent = 0;
  friend bool operator==(const StartedProcess&, const StartedProcess&) = default;
};
using StartedProcesses = std::vector<StartedProcess>;

enum class EndKind : std::uint8_t {
  by_itself,
  asked,       // another program asked it to close
  ended,       // another program ended it
  terminated,  // this process did
  gave_way,    // its id went to another process
};

/// A process that ended, for the account of a run, in the order of the ends.
struct EndedProcess {
  std::uint32_t id = 0;
  std::wstring image;
  std::wstring command_line;
  EndKind kind = EndKind::by_itself;
  std::uint32_t exit_code = 0;
  std::uint64_t when = 0;  // milliseconds since the run began
  friend bool operator==(const EndedProcess&, const EndedProcess&) = default;
};
using EndedProcesses = std::vector<EndedProcess>;

}  // namespace machine
