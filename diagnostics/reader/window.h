#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "diagnostics/reader/byte_source.h"

namespace diagnostics::reader {

/// The part of a source that is held in memory.
class Window {
 public:
  /// Reads `piece` bytes at a time.
  Window(const ByteSource& source, std::size_t piece) : source_(source), piece_(piece) {}

  /// All that is held from `offset` on, at least `wanted` bytes of it unless the source ends before; valid until the
  /// next call. Where reading fails the source seems to end.
  [[nodiscard]] std::span<const std::uint8_t> bytes(std::uint64_t offset, std::size_t wanted);

  /// Forgets what is held, so that it is read anew: the source has grown.
  void forget() { size_ = 0; }

  /// Why reading failed; empty where it did not.
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  const ByteSource& source_;
  const std::size_t piece_;
  std::vector<std::uint8_t> held_;
  std::uint64_t begin_ = 0;
  std::size_t size_ = 0;
  std::string failure_;
};

}  // namespace diagnostics::reader
