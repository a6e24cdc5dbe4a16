#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// The files of a folder whose names end in `ending`, sorted.
inline std::vector<std::string> files_in(const std::string& folder, std::string_view ending) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::string path = entry.path().generic_string();
    if (path.ends_with(ending)) files.push_back(std::move(path));
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace support
