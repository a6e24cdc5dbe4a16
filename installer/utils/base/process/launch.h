#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/types.h"

namespace base::process {

/// A started program; all zero where it did not start. The caller closes both handles.
struct LaunchedProcess {
  std::uint32_t pid = 0;
  std::uint32_t thread_id = 0;
  ports::Handle process = ports::Handle::null;
  ports::Handle thread = ports::Handle::null;
};

/// Starts a command line without a window (CreateProcessW), in `currentDir` or, where that is empty, in this process's
/// current folder. An empty command line starts nothing. Why a start failed is not told.
[[nodiscard]] LaunchedProcess RunCommandLine(const std::wstring& commandLine, const std::wstring& currentDir);

/// Closes both handles where they are neither null nor invalid.
void CloseLaunched(const LaunchedProcess& launched);

}  // namespace base::process
