#pragma once

#include <algorithm>
#include <string>

#include "diagnostics/reader/byte_source.h"

namespace support {

/// A log file that is a string.
class MemorySource final : public diagnostics::reader::ByteSource {
 public:
  explicit MemorySource(std::string bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::string length(std::uint64_t& bytes) const override {
    bytes = bytes_.size();
    return {};
  }
  [[nodiscard]] std::string read(std::uint64_t offset, std::span<std::uint8_t> into, std::size_t& size) const override {
    const std::size_t from = std::min<std::size_t>(offset, bytes_.size());
    size = std::min(into.size(), bytes_.size() - from);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(from), size, into.begin());
    return {};
  }

 private:
  const std::string bytes_;
};

}  // namespace support
