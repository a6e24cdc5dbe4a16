#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "platform/ports/inspection.h"
#include "platform/ports/types.h"

namespace base::process {

/// What NtQueryInformationProcess tells of a process; `valid` only where the call passed, gave all 48 bytes and the
/// environment block has an address.
struct ProcessBasicInfo {
  ports::ProcessBasicInformation information;
  bool valid = false;
};

/// Of a null handle everything is zero.
[[nodiscard]] ProcessBasicInfo QueryProcessBasicInfo(ports::Handle process);

/// The command line of another process, read out of its parameters, which lie as in a 64-bit process whatever the
/// target is. Empty on failure: a process that cannot be opened or queried leaves the code in `error`, memory that
/// cannot be read leaves it clear. The caller clears `error` before the call.
[[nodiscard]] std::wstring GetProcessCommandLine(std::uint32_t pid, std::error_code& error);

}  // namespace base::process
