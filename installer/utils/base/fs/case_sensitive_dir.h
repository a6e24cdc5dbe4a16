#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace base::fs {

/// Whether a folder tells names apart by case (FileCaseSensitiveInformation). Nothing, without error, for what is no
/// folder or not there; nothing with a Windows code in `error` where the system cannot say. A null path stops the
/// process. The caller clears `error` before the call.
[[nodiscard]] std::optional<bool> IsCaseSensitiveDir(const wchar_t* path, std::error_code& error);

}  // namespace base::fs
