#pragma once

#include <cstdint>
#include <span>

#include "platform/machine/running.h"

/// What lies in a process's memory, laid out as in a 64-bit process. Every process has its own addresses, so that what
/// was found in one is of no use in another.
namespace machine {

/// Where the environment block lies.
[[nodiscard]] std::uint64_t environment_block(std::uint32_t id);

/// Copies what lies at `address`: the environment block, the process parameters that it leads to, and the texts that
/// these lead to (image, current folder, command line), each of which may be read to the end of its last page. False
/// where any of it is not there.
[[nodiscard]] bool read_process_memory(const RunningProgram& program, std::uint64_t address,
                                       std::span<std::uint8_t> into);

}  // namespace machine
