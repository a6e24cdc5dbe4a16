#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace desk {

/// A file of the desk that is read in pieces, from anywhere. Others may write to it, rename and delete it meanwhile; a
/// deleted one can still be read. Failures are told as in desk.h. Defined in the build's own folder.
class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// Opens a plain file; once for each object.
  [[nodiscard]] std::string open(const std::string& path);

  /// How many bytes the file has now.
  [[nodiscard]] std::string length(std::uint64_t& bytes) const;

  /// Reads from `offset` on. `size` is how many bytes came: fewer than `into` has room for at the file's end alone.
  [[nodiscard]] std::string read(std::uint64_t offset, std::span<std::uint8_t> into, std::size_t& size) const;

 private:
  [[nodiscard]] std::string failed() const;

  std::intptr_t handle_ = -1;
  std::string path_;
};

}  // namespace desk
