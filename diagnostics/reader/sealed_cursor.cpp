#include "diagnostics/reader/sealed_cursor.h"

#include <algorithm>
#include <array>
#include <utility>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/little_endian.h"
#include "diagnostics/reader/time_stamp.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t length_size = log_format::length_size;

/// The beginning of a thread's first message, in UTF-16.
constexpr auto thread_mark = [] {
  std::array<std::uint8_t, 2 * log_format::first_record_begin.size()> bytes{};
  for (std::size_t i = 0; i < log_format::first_record_begin.size(); ++i) {
    bytes[2 * i] = static_cast<std::uint8_t>(log_format::first_record_begin[i]);
  }
  return bytes;
}();

/// A padded text without its padding; empty where the padding is none.
std::span<const std::uint8_t> without_padding(std::span<const std::uint8_t> text, std::uint32_t block) {
  const std::uint8_t count = text.back();
  if (count == 0 || count > block) return {};
  const auto padding = text.last(count);
  const bool whole = std::all_of(padding.begin(), padding.end(), [&](std::uint8_t byte) { return byte == count; });
  return whole ? text.first(text.size() - count) : std::span<const std::uint8_t>();
}

bool ends_line(std::span<const std::uint8_t> text) {
  return text.size() >= 2 && text[text.size() - 2] == '\n' && text[text.size() - 1] == 0;
}

}  // namespace

SealedCursor::SealedCursor(const ByteSource& source, SealedKey key, Extent extent, std::size_t piece, Damage damage)
    : source_(source),
      key_(std::move(key)),
      block_(key_.key->block_size()),
      piece_(piece),
      damage_(std::move(damage)),
      extent_(extent),
      window_(source, piece),
      starts_(source, *key_.key),
      at_(extent.begin) {}

bool SealedCursor::next(Head& head) {
  for (;;) {
    if (next_item_ < items_.size()) {
      const Item item = items_[next_item_];
      if (check(item, head)) {
        ++next_item_;
        at_ = item.after;
        head.after_damage = std::exchange(after_damage_, false);
        return true;
      }
      at_ = item.offset;
      drop_batch();
      if (!recover()) return false;
    } else if (at_ >= extent_.end || (!fill() && !recover())) {
      return false;
    }
  }
}

/// Deciphers the records that lie in the next piece. False where none begins at the current place.
bool SealedCursor::fill() {
  drop_batch();
  const std::uint32_t first = length_at(at_);
  const std::size_t wanted = is_record_length(first, block_) ? std::max(piece_, length_size + first) : piece_;
  const auto left = static_cast<std::size_t>(std::min<std::uint64_t>(extent_.end - at_, wanted));
  std::span<const std::uint8_t> bytes = window_.bytes(at_, left);
  bytes = bytes.first(std::min(bytes.size(), left));
  std::size_t used = 0;
  for (; bytes.size() - used >= length_size;) {
    const auto rest = bytes.subspan(used);
    const std::uint32_t length = little_endian(rest);
    const bool header = length == key_.wrapped.size() && rest.size() >= length_size + length &&
                        std::equal(key_.wrapped.begin(), key_.wrapped.end(), rest.begin() + length_size);
    if (!header) {
      if (!is_record_length(length, block_) || rest.size() < length_size + length) break;
      items_.push_back({at_ + used, at_ + used + length_size + length, cipher_.size(), length});
      const auto cipher = rest.subspan(length_size, length);
      cipher_.insert(cipher_.end(), cipher.begin(), cipher.end());
    }
    used += length_size + length;
  }
  if (items_.empty()) {
    at_ += used;
    return used > 0;
  }
  plain_.resize(cipher_.size());
  // Zeros are no record.
  if (!key_.key->decrypt(cipher_, plain_)) std::fill(plain_.begin(), plain_.end(), std::uint8_t{0});
  return true;
}

/// Looks into a record of the batch, once.
bool SealedCursor::check(const Item& item, Head& head) {
  const auto text = std::span(plain_).subspan(item.cipher_at, item.length);
  // Its first block was chained to the record before it.
  for (std::size_t i = 0; item.cipher_at != 0 && i < block_; ++i) text[i] ^= cipher_[item.cipher_at - block_ + i];
  const auto time = time_of(text);
  const auto line = without_padding(text, block_);
  if (!time || line.size() <= stamp_size || line.size() % 2 != 0) return false;
  const bool ended = ends_line(line);
  // Every line ends so. Where this one does not, its text or its length is damaged.
  if (!ended && !boundary_at(item.after)) return false;
  text_ = line.subspan(stamp_size, line.size() - stamp_size - (ended ? 2 : 0));
  head.offset = item.offset;
  head.time = *time;
  return true;
}

bool SealedCursor::begins_thread() const {
  return text_.size() > thread_mark.size() && std::equal(thread_mark.begin(), thread_mark.end(), text_.begin());
}

void SealedCursor::message(std::wstring& out) {
  out.resize(text_.size() / 2);
  const std::uint8_t* from = text_.data();
  for (wchar_t& unit : out) {
    unit = static_cast<wchar_t>(from[0] | from[1] << 8);
    from += 2;
  }
}

void SealedCursor::extend(std::uint64_t end, End what) {
  extent_.end = end;
  extent_.what = what;
  window_.forget();
}

void SealedCursor::drop_batch() {
  items_.clear();
  next_item_ = 0;
  cipher_.clear();
  text_ = {};
}

void SealedCursor::report(ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, std::string text) {
  after_damage_ = after_damage_ || kind != ProblemKind::length;
  if (damage_) damage_(kind, offset, bytes, std::move(text));
}

}  // namespace diagnostics::reader
