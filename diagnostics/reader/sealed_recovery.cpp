// How a cursor over the sealed form goes on behind damage.
#include <algorithm>
#include <optional>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/little_endian.h"
#include "diagnostics/reader/sealed_cursor.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t length_size = log_format::length_size;

}  // namespace

/// The length field at `offset`; 0, which is no length, where there is none.
std::uint32_t SealedCursor::length_at(std::uint64_t offset) {
  if (offset + length_size > extent_.end) return 0;
  const auto bytes = window_.bytes(offset, length_size);
  return bytes.size() < length_size ? 0 : little_endian(bytes);
}

bool SealedCursor::record_fits(std::uint64_t offset) {
  const std::uint32_t length = length_at(offset);
  return is_record_length(length, block_) && offset + length_size + length <= extent_.end;
}

bool SealedCursor::header_at(std::uint64_t offset) {
  if (length_at(offset) != key_.wrapped.size()) return false;
  const auto bytes = window_.bytes(offset, length_size + key_.wrapped.size());
  return bytes.size() >= length_size + key_.wrapped.size() &&
         std::equal(key_.wrapped.begin(), key_.wrapped.end(), bytes.begin() + length_size);
}

/// True where something that is whole ends at `offset`: another record begins there, or nothing follows.
bool SealedCursor::boundary_at(std::uint64_t offset) {
  if (offset > extent_.end) return false;
  const std::uint64_t left = extent_.end - offset;
  if (left < length_size || header_at(offset)) return true;
  if (!is_record_length(length_at(offset), block_)) return false;
  return left < length_size + stamp_cipher_size(block_) || starts_.begins_at(offset + length_size, extent_.end);
}

/// True where [begin, end) deciphers to one whole line, which then is the batch.
bool SealedCursor::is_whole(std::uint64_t begin, std::uint64_t end) {
  drop_batch();
  if (end <= begin || end - begin > max_record_size) return false;
  const auto length = static_cast<std::uint32_t>(end - begin);
  if (!is_record_length(length, block_)) return false;
  cipher_.resize(length);
  plain_.resize(length);
  std::size_t size = 0;
  Head head;
  if (!source_.read(begin, cipher_, size).empty() || size < length || !key_.key->decrypt(cipher_, plain_) ||
      !check({begin, end, 0, length}, head)) {
    return false;
  }
  // That check takes a line without its end where the next record confirms the length; here nothing does.
  return text_.data() + text_.size() + 2 <= plain_.data() + length - plain_[length - 1];
}

/// No good record begins at the current place. False where nothing follows, or not yet.
bool SealedCursor::recover() {
  const std::uint64_t from = at_;
  if (!window_.failure().empty()) {
    report(ProblemKind::file, from, extent_.end - from, window_.failure());
    at_ = extent_.end;
    return false;
  }
  const std::uint32_t length = length_at(from);
  const bool fits = record_fits(from);
  const bool torn = extent_.end - from < length_size || (is_record_length(length, block_) && !fits);
  if (torn && extent_.what == End::growing) return false;
  if (fits && boundary_at(from + length_size + length)) {
    report(ProblemKind::record, from, length_size + length, "this record cannot be read");
    at_ = from + length_size + length;
    return true;
  }
  return resynchronise(from);
}

/// Goes on at the next record that can be found, with its length field or without.
bool SealedCursor::resynchronise(std::uint64_t from) {
  std::optional<std::uint64_t> begin = starts_.find(from, extent_.end);
  for (; begin; begin = starts_.find(*begin + 1, extent_.end)) {
    if (*begin > from + length_size && is_framed(*begin)) {
      drop_batch();
      pass_over(from, *begin - length_size);
      return true;
    }
    if (take_without_length(from, *begin)) return true;
  }
  return end_torn(from);
}

/// True where the length field before a record's cipher text can be trusted.
bool SealedCursor::is_framed(std::uint64_t begin) {
  const std::uint64_t field = begin - length_size;
  const std::uint64_t end = begin + length_at(field);
  return record_fits(field) && (is_whole(begin, end) || boundary_at(end));
}

/// Takes the record whose cipher text begins at `begin` where it ends before the next one, or with the file.
bool SealedCursor::take_without_length(std::uint64_t from, std::uint64_t begin) {
  const auto next = starts_.find(begin + stamp_cipher_size(block_), extent_.end);
  std::uint64_t end = next ? *next - length_size : extent_.end;
  // Two threads that share a file may have written both lengths first and both texts then.
  if (!is_whole(begin, end) && !(next && is_whole(begin, end = *next))) {
    drop_batch();
    return false;
  }
  items_.push_back({from, end, 0, static_cast<std::size_t>(end - begin)});
  report(ProblemKind::length, from, begin - from, "the length field is damaged; the record was found without it");
  return true;
}

/// No record follows. False, always.
bool SealedCursor::end_torn(std::uint64_t from) {
  if (extent_.what == End::growing) return false;
  const std::uint64_t left = extent_.end - from;
  const bool cut = left < length_size || (is_record_length(length_at(from), block_) && !record_fits(from));
  if (cut && extent_.what == End::file) {
    report(ProblemKind::cut_short, from, left,
           "cut short: the last " + std::to_string(left) + " bytes are no whole record");
  } else {
    report(ProblemKind::passed_over, from, left, std::to_string(left) + " bytes passed over; no record follows them");
  }
  at_ = extent_.end;
  return false;
}

void SealedCursor::pass_over(std::uint64_t from, std::uint64_t to) {
  report(ProblemKind::passed_over, from, to - from,
         std::to_string(to - from) + " bytes passed over up to the next record");
  at_ = to;
}

}  // namespace diagnostics::reader
