#include "platform/machine/file_bytes.h"

#include <algorithm>

namespace machine {

std::vector<std::uint8_t> FileBytes::all() const {
  std::vector<std::uint8_t> bytes(size());
  read(0, bytes);
  return bytes;
}

std::vector<std::uint8_t>& FileBytes::open_piece() {
  if (pieces_.empty() || pieces_.back().size() == piece_size) {
    // Most files are small: only one that has outgrown its first piece gets the next one whole.
    const bool first = pieces_.empty();
    pieces_.emplace_back();
    if (!first) pieces_.back().reserve(piece_size);
  }
  return pieces_.back();
}

void FileBytes::append(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    std::vector<std::uint8_t>& piece = open_piece();
    const auto part = bytes.first(std::min(bytes.size(), piece_size - piece.size()));
    piece.insert(piece.end(), part.begin(), part.end());
    bytes = bytes.subspan(part.size());
  }
}

void FileBytes::resize(std::size_t size) {
  if (size < this->size()) {
    pieces_.resize((size + piece_size - 1) / piece_size);
    if (size % piece_size != 0) pieces_.back().resize(size % piece_size);
  }
  for (std::size_t missing = size - this->size(); missing != 0; missing = size - this->size()) {
    std::vector<std::uint8_t>& piece = open_piece();
    piece.resize(std::min(piece_size, piece.size() + missing));
  }
}

void FileBytes::write(std::size_t at, std::span<const std::uint8_t> bytes) {
  if (at > size()) resize(at);
  const std::size_t known = std::min(bytes.size(), size() - at);
  for (std::size_t done = 0; done < known;) {
    std::vector<std::uint8_t>& piece = pieces_[(at + done) / piece_size];
    const std::size_t begin = (at + done) % piece_size;
    const auto part = bytes.subspan(done, std::min(known - done, piece.size() - begin));
    std::copy(part.begin(), part.end(), piece.begin() + static_cast<std::ptrdiff_t>(begin));
    done += part.size();
  }
  append(bytes.subspan(known));
}

void FileBytes::read(std::size_t at, std::span<std::uint8_t> into) const {
  while (!into.empty() && at < size()) {
    const std::vector<std::uint8_t>& piece = pieces_[at / piece_size];
    const auto part = std::span(piece).subspan(at % piece_size);
    const std::size_t count = std::min(into.size(), part.size());
    std::copy_n(part.begin(), count, into.begin());
    into = into.subspan(count);
    at += count;
  }
  std::fill(into.begin(), into.end(), std::uint8_t{0});
}

}  // namespace machine
