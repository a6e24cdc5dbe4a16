#include "diagnostics/reader/fall_back_cursor.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/time_stamp.h"

namespace diagnostics::reader {

namespace {

/// Cuts off the beginning of a character whose rest is missing.
std::string_view without_torn_character(std::string_view text) {
  for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
    const auto byte = static_cast<unsigned char>(text[text.size() - back]);
    if ((byte & 0xC0) == 0x80) continue;
    const std::size_t needed = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    return needed > back ? text.substr(0, text.size() - back) : text;
  }
  return text;
}

}  // namespace

FallBackCursor::FallBackCursor(const ByteSource& source, const Unscrambler& unscrambler, Extent extent,
                               std::size_t piece, Damage damage)
    : unscrambler_(unscrambler),
      thread_mark_(unscrambler.scramble(log_format::first_record_begin)),
      damage_(std::move(damage)),
      extent_(extent),
      window_(source, piece),
      at_(extent.begin) {}

bool FallBackCursor::next(Head& head) {
  while (at_ < extent_.end) {
    Line line;
    if (!find_line(line)) return false;
    if (take(line, head)) {
      head.after_damage = std::exchange(after_damage_, false);
      return true;
    }
  }
  return false;
}

/// False where no line is to be had: a read has failed, or the line is still being written.
bool FallBackCursor::find_line(Line& line) {
  for (std::size_t wanted = 1;;) {
    const std::uint64_t left = extent_.end - at_;
    const auto bytes = window_.bytes(at_, static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left)));
    if (bytes.size() < std::min<std::uint64_t>(wanted, left)) {
      report(ProblemKind::file, at_, left, window_.failure().empty() ? "the file has shrunk" : window_.failure());
      at_ = extent_.end;
      return false;
    }
    const std::string_view held(reinterpret_cast<const char*>(bytes.data()),
                                static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), left)));
    const std::size_t feed = held.find('\n');
    if (feed != std::string_view::npos || held.size() == left) {
      line.ended = feed != std::string_view::npos;
      line.text = held.substr(0, feed);
      line.after = at_ + line.text.size() + (line.ended ? 1 : 0);
      if (!line.ended && extent_.what == End::growing) return false;
      if (line.text.ends_with('\r')) line.text.remove_suffix(1);
      return true;
    }
    if (held.size() >= max_record_size) {
      skip_long_line();
      if (at_ >= extent_.end) return false;
      wanted = 1;
    } else {
      wanted = std::min(std::max<std::size_t>(held.size() + 1, 2 * wanted), max_record_size);
    }
  }
}

/// Takes the record that the line holds and moves on. False where it holds none.
bool FallBackCursor::take(const Line& line, Head& head) {
  const std::uint64_t begin = at_;
  std::string_view text = line.text;
  while (text.starts_with(log_format::byte_order_mark)) text.remove_prefix(log_format::byte_order_mark.size());
  if (text.empty()) {
    at_ = line.after;
    return false;
  }
  const auto time = time_of(text);
  const std::string_view rest = time ? text.substr(log_format::time_stamp_length) : text;
  // A second stamp in one line: the end of the line between them is damaged.
  const std::size_t next = find_time(rest);
  const auto place = [&](std::string_view part) {
    return begin + static_cast<std::uint64_t>(part.data() - line.text.data());
  };
  at_ = next == std::string_view::npos ? line.after : place(rest.substr(next));
  const bool torn = at_ == line.after && !line.ended && extent_.what == End::file;
  if (!time) {
    report(torn ? ProblemKind::cut_short : ProblemKind::record, begin, at_ - begin,
           torn ? "cut short: the last " + std::to_string(at_ - begin) + " bytes are no whole record"
                : "this record cannot be read");
    return false;
  }
  message_ = rest.substr(0, next);
  head.offset = begin;
  head.time = *time;
  if (next != std::string_view::npos) {
    const std::size_t carriage_return = message_.rfind('\r');
    if (carriage_return != std::string_view::npos && carriage_return + 2 >= message_.size()) {
      message_ = message_.substr(0, carriage_return);
    }
    report(ProblemKind::length, place(message_) + message_.size(), 0, "the end of this line is damaged");
  } else if (torn) {
    message_ = without_torn_character(message_);
    report(ProblemKind::cut_short, begin, line.after - begin, "cut short: the line has no end");
  }
  return true;
}

void FallBackCursor::skip_long_line() {
  const std::uint64_t begin = at_;
  while (at_ < extent_.end) {
    const auto bytes = window_.bytes(at_, 1);
    if (bytes.empty()) break;
    const void* const feed = std::memchr(bytes.data(), '\n', bytes.size());
    if (feed != nullptr) {
      at_ += static_cast<std::uint64_t>(static_cast<const std::uint8_t*>(feed) - bytes.data()) + 1;
      break;
    }
    at_ += bytes.size();
  }
  at_ = std::min(at_, extent_.end);
  report(ProblemKind::passed_over, begin, at_ - begin,
         std::to_string(at_ - begin) + " bytes passed over; no line is so long");
}

bool FallBackCursor::begins_thread() const {
  return message_.starts_with(thread_mark_);
}

void FallBackCursor::message(std::wstring& out) {
  unscrambler_.turn_back(message_, out);
}

void FallBackCursor::extend(std::uint64_t end, End what) {
  extent_.end = end;
  extent_.what = what;
  window_.forget();
}

void FallBackCursor::report(ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, std::string text) {
  after_damage_ = after_damage_ || kind != ProblemKind::length;
  if (damage_) damage_(kind, offset, bytes, std::move(text));
}

}  // namespace diagnostics::reader
