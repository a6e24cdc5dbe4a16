#pragma once

#include <string>
#include <string_view>

namespace ky {

/// Whether a name in the INF folder, in lower case, may be one that the system assigned to a package. Loose on purpose:
/// behind "oem" one of the characters of ".inf" anywhere will do, since what is no INF file is found out by asking the
/// driver store.
[[nodiscard]] bool MayBeAssignedInf(std::wstring_view name);

/// What stands behind the last separator of a path; empty where it ends in one.
[[nodiscard]] std::wstring_view FileNameOf(std::wstring_view path);

/// The command line that removes the package with an assigned name; `system_folder` ends in a backslash.
[[nodiscard]] std::wstring PnputilLine(std::wstring_view system_folder, std::wstring_view inf);

/// Whether a command line fits the 260 characters that there are for it, terminator included.
[[nodiscard]] bool FitsPnputil(std::wstring_view line);

}  // namespace ky
