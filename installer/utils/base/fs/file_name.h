#pragma once

namespace base::fs {

/// PathFindFileNameW: where the last part of `path` begins. What follows a "\", "/" or ":" begins a part unless the
/// path ends there or another separator follows, so that a path with a closing separator has that last part, separator
/// included.
[[nodiscard]] const wchar_t* file_name(const wchar_t* path);

}  // namespace base::fs
