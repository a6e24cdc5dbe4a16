#pragma once

namespace win32 {

/// Lets libraries that are named without a path come from the program's own folder and the system's alone: the current
/// folder and the search path are left out, where others may write. False where the system refuses.
[[nodiscard]] bool restrict_library_search();

}  // namespace win32
