#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace support {

/// The names of the system's files that a pattern finds, sorted; of folders none.
[[nodiscard]] inline std::vector<std::wstring> file_names(const ports::System& system, const std::wstring& pattern) {
  std::vector<std::wstring> names;
  ports::FolderRow row;
  const ports::Handle search = system.files.find_first(pattern.c_str(), row);
  if (search == ports::Handle::invalid) return names;
  do {
    if ((row.attributes & ports::file_attribute::directory) == 0) names.push_back(row.name);
  } while (system.files.find_next(search, row));
  system.files.find_close(search);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace support
