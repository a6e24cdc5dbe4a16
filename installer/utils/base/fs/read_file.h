#pragma once

#include <cstddef>
#include <string>

namespace base::fs {

/// Reads all bytes of a file that others may read, write and delete meanwhile. False, with the cause in the last error,
/// where it cannot be opened or read; also where it has more than `most` bytes (buffer_overflow).
[[nodiscard]] bool read_file(const wchar_t* path, std::size_t most, std::string& out);

}  // namespace base::fs
