#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace desk {

/// A file of the desk that grows by pieces, each of which has left the process when `append` returns: whoever ends the
/// process then loses none of it. Not for two threads at once. Defined in the build's own folder.
class AppendedFile {
 public:
  /// Opens the file for `append`; what was there goes. `failure` tells whether that worked.
  explicit AppendedFile(std::string path);
  ~AppendedFile();
  AppendedFile(const AppendedFile&) = delete;
  AppendedFile& operator=(const AppendedFile&) = delete;

  void append(std::span<const std::uint8_t> bytes);
  /// Cuts the file to its first `size` bytes.
  void cut(std::uint64_t size);
  /// Closes and removes it; nothing else works afterwards.
  void remove();

  /// Empty, or what went wrong first, as one line.
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  void failed(const char* what);
  void close();

  std::intptr_t handle_ = -1;
  std::string path_;
  std::string failure_;
};

}  // namespace desk
