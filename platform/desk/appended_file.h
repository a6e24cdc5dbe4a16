#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>

namespace desk {

/// A file of the desk that grows by pieces, each of which has left the process when `append` returns: whoever ends the
/// process then loses none of it. Not for two threads at once.
class AppendedFile {
 public:
  /// Opens the file for `append`; what was there goes. `failure` tells whether that worked.
  explicit AppendedFile(std::string path);

  void append(std::span<const std::uint8_t> bytes);
  /// Cuts the file to its first `size` bytes.
  void cut(std::uint64_t size);
  /// Closes and removes it; nothing else works afterwards.
  void remove();

  /// Empty, or what went wrong first, as one line.
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  void check(const char* what);

  std::string path_;
  std::ofstream file_;
  std::string failure_;
};

}  // namespace desk
