#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace machine {

/// A file's bytes, in pieces: what is there does not move when the file grows, so that a record appended to a large
/// file costs no more than one appended to a small file. Files grow under the world's lock.
class FileBytes {
 public:
  FileBytes() = default;
  FileBytes(const std::vector<std::uint8_t>& bytes) { append(bytes); }  // NOLINT: a file's bytes are just bytes

  [[nodiscard]] std::size_t size() const {
    return pieces_.empty() ? 0 : (pieces_.size() - 1) * piece_size + pieces_.back().size();
  }
  [[nodiscard]] bool empty() const { return pieces_.empty(); }
  [[nodiscard]] std::uint8_t operator[](std::size_t at) const { return pieces_[at / piece_size][at % piece_size]; }
  [[nodiscard]] std::vector<std::uint8_t> all() const;

  void append(std::span<const std::uint8_t> bytes);
  /// Cuts, or grows by zeros.
  void resize(std::size_t size);
  /// In place of what stands from `at` on; what is missing before that becomes zeros.
  void write(std::size_t at, std::span<const std::uint8_t> bytes);
  /// Fills `into` with what stands from `at` on; zeros past the end.
  void read(std::size_t at, std::span<std::uint8_t> into) const;

 private:
  static constexpr std::size_t piece_size = 64 * 1024;

  [[nodiscard]] std::vector<std::uint8_t>& open_piece();

  std::vector<std::vector<std::uint8_t>> pieces_;  // none empty, and all but the last one full
};

}  // namespace machine
