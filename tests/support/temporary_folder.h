#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>

#include "platform/desk/desk.h"

namespace support {

[[nodiscard]] inline std::string text_of(const std::string& path) {
  std::string text;
  EXPECT_EQ(desk::read_file(path, 10'000'000, text), "");
  return text;
}

/// A fresh folder of the desk, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder()
      : path_(std::filesystem::temp_directory_path() / ("ky-test-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(path_);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] std::string path() const { return path_.string(); }
  [[nodiscard]] std::string operator/(const char* name) const { return desk::join(path(), name); }
  /// Writes a file and gives its path.
  std::string write(const std::string& name, std::string_view bytes) const {
    std::string path = *this / name.c_str();
    EXPECT_EQ(desk::write_file(path, bytes), "");
    return path;
  }
  [[nodiscard]] std::size_t files() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace support
