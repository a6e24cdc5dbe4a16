#include "diagnostics/reader/window.h"

#include <algorithm>

namespace diagnostics::reader {

std::span<const std::uint8_t> Window::bytes(std::uint64_t offset, std::size_t wanted) {
  if (offset < begin_ || offset + wanted > begin_ + size_) {
    const std::size_t room = std::max(piece_, wanted);
    // One long record shall not hold its memory for the rest of the file.
    if (held_.size() != room) std::vector<std::uint8_t>(room).swap(held_);
    begin_ = offset;
    std::string failed = source_.read(offset, held_, size_);
    if (!failed.empty()) failure_ = std::move(failed);
  }
  return std::span(held_.data(), size_).subspan(static_cast<std::size_t>(offset - begin_));
}

}  // namespace diagnostics::reader
