#pragma once

#include <string>

namespace base::process {

/// Hands the request to the running desktop shell, so that the program starts under the shell's token and not under
/// this process's. True when the shell took the request; false without a shell, or on any failure on the way.
[[nodiscard]] bool ShellExecuteAsDesktopUser(const std::wstring& file, const std::wstring& arguments,
                                             const std::wstring& directory, const std::wstring& operation);

}  // namespace base::process
