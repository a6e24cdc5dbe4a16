#include "diagnostics/reader/sealed_form.h"

#include <algorithm>
#include <array>

#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/time_stamp.h"

namespace diagnostics::reader {

namespace {

// A record may be found at once, or behind a gigabyte of nothing.
constexpr std::size_t first_piece = 2048;
constexpr std::size_t last_piece = 65536;

constexpr std::size_t line_end_size = 2;

std::size_t round_up(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

/// Whether blocks that were deciphered as part of a longer chain, `before` being what stood before the first of them,
/// begin with a time stamp.
bool is_start(std::span<const std::uint8_t> plain, std::span<const std::uint8_t> before) {
  // Looked at first, since it is wrong nearly everywhere.
  if ((plain[0] ^ before[0]) != '[' || plain[1] != before[1]) return false;
  std::array<std::uint8_t, stamp_size> stamp{};
  for (std::size_t i = 0; i < stamp.size(); ++i) {
    stamp[i] = static_cast<std::uint8_t>(i < before.size() ? plain[i] ^ before[i] : plain[i]);
  }
  return time_of(stamp).has_value();
}

}  // namespace

bool is_record_length(std::uint32_t length, std::uint32_t block_size) {
  return length % block_size == 0 && length >= round_up(stamp_size + line_end_size + 1, block_size) &&
         length <= max_record_size;
}

std::size_t stamp_cipher_size(std::uint32_t block_size) {
  return round_up(stamp_size, block_size);
}

std::optional<std::size_t> StartFinder::find_in(std::span<const std::uint8_t> bytes,
                                                std::vector<std::uint8_t>& plain) const {
  const std::size_t block = key_.block_size();
  const std::size_t needed = stamp_cipher_size(key_.block_size());
  constexpr std::array<std::uint8_t, 64> nothing{};
  std::optional<std::size_t> found;
  // Blocks may lie at any remainder, so the bytes are deciphered once for each.
  for (std::size_t phase = 0; phase < block && phase + needed <= bytes.size(); ++phase) {
    const std::span<const std::uint8_t> cipher = bytes.subspan(phase, (bytes.size() - phase) / block * block);
    plain.resize(cipher.size());
    if (!key_.decrypt(cipher, plain)) return std::nullopt;
    for (std::size_t at = 0; at + needed <= cipher.size() && phase + at < found.value_or(bytes.size()); at += block) {
      const auto before = at == 0 ? std::span(nothing).first(block) : cipher.subspan(at - block, block);
      if (!is_start(std::span(plain).subspan(at), before)) continue;
      found = phase + at;
      break;
    }
  }
  return found;
}

std::optional<std::uint64_t> StartFinder::find(std::uint64_t from, std::uint64_t end) const {
  const std::size_t needed = stamp_cipher_size(key_.block_size());
  std::vector<std::uint8_t> bytes;
  std::vector<std::uint8_t> plain;
  for (std::size_t piece = first_piece; from + needed <= end; piece = std::min(2 * piece, last_piece)) {
    bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(piece, end - from)));
    std::size_t size = 0;
    if (!source_.read(from, bytes, size).empty() || size < needed) return std::nullopt;
    if (const auto found = find_in(std::span(bytes).first(size), plain)) return from + *found;
    // What is too near to the piece's end to be told belongs to the next one.
    from += size - needed + 1;
  }
  return std::nullopt;
}

bool StartFinder::begins_at(std::uint64_t place, std::uint64_t end) const {
  std::vector<std::uint8_t> cipher(stamp_cipher_size(key_.block_size()));
  std::vector<std::uint8_t> plain(cipher.size());
  std::size_t size = 0;
  return place + cipher.size() <= end && source_.read(place, cipher, size).empty() && size == cipher.size() &&
         key_.decrypt(cipher, plain) && time_of(plain).has_value();
}

}  // namespace diagnostics::reader
