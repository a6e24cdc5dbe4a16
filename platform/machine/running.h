#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace machine {

/// How a process takes it when others deal with it.
struct Temper {
  std::uint32_t closes_after = 0;  // milliseconds from being asked to close until its end
  bool hangs = false;              // it does not close when it is asked
  std::wstring spawns;             // the command line of what starts when it ends, in whatever way
  std::uint32_t refuses = 0;       // rights of ports::process_access that nobody is given
  bool needs_debug_privilege = false;
  bool image_unreadable = false;
  bool parameters_unreadable = false;
  bool wow64 = false;
  friend bool operator==(const Temper&, const Temper&) = default;
};

/// What is over when a process gives way to another: the first snapshot that lists it (closed, or read to its end), the
/// first handle through which its path was read, or the first handle at all.
enum class GivesWay : std::uint8_t { never, after_snapshot, after_image_path, after_open };

/// A process as it stands when the machine begins or is written down.
struct RunningProgram {
  std::uint32_t id = 0;  // 0 for whichever is free
  std::uint32_t parent = 0;
  std::wstring image;  // full path
  std::wstring name;   // in snapshots; empty for the last part of the image
  std::wstring command_line;
  std::wstring folder;  // its current one
  Temper temper;
  std::optional<std::uint32_t> ends_after;  // milliseconds; none where it runs on
  GivesWay gives_way = GivesWay::never;
  std::vector<RunningProgram> successor;  // the one that gets its id, where it gives way
  friend bool operator==(const RunningProgram&, const RunningProgram&) = default;
};
using RunningPrograms = std::vector<RunningProgram>;

}  // namespace machine
