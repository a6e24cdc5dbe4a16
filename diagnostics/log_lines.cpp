#include "diagnostics/log_lines.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "installer/utils/base/strings/utf8.h"

namespace diagnostics {

namespace {

static_assert(std::endian::native == std::endian::little, "units and lengths are copied as they lie in memory");

constexpr std::size_t unit_size = 2;

/// Copies units by the block, which compilers turn into a few wide moves.
std::uint8_t* put_units(std::uint8_t* to, std::wstring_view units) {
  std::array<std::uint16_t, 16> block;
  std::size_t at = 0;
  for (; at + block.size() <= units.size(); at += block.size(), to += sizeof block) {
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<std::uint16_t>(units[at + i]);
    std::memcpy(to, block.data(), sizeof block);
  }
  for (; at < units.size(); ++at, to += unit_size) {
    const auto unit = static_cast<std::uint16_t>(units[at]);
    std::memcpy(to, &unit, unit_size);
  }
  return to;
}

char* put_two_digits(char* to, std::uint32_t value) {
  to[0] = static_cast<char>('0' + value / 10);
  to[1] = static_cast<char>('0' + value % 10);
  return to + 2;
}

/// Scrambles byte by byte and keeps the place in the key from one to the next.
class Scrambler {
 public:
  explicit Scrambler(std::span<const std::uint8_t> key) : key_(key) {}

  [[nodiscard]] wchar_t unit(wchar_t plain) {
    const std::uint8_t low = byte(static_cast<std::uint8_t>(plain & 0xFF));
    const std::uint8_t high = byte(static_cast<std::uint8_t>(plain >> 8 & 0xFF));
    return static_cast<wchar_t>(high << 8 | low);
  }

  static constexpr std::size_t block = 16;
  /// The same for as many units, which become one byte each. False, with nothing done, where they are not as simple as
  /// nearly all are: ASCII before and after, without a line feed, and the key does not end inside.
  [[nodiscard]] bool ascii(const wchar_t* plain, char* to) {
    if (at_ + block > key_.size()) return false;
    std::array<std::uint8_t, block> key;
    std::array<std::uint8_t, block> low;
    std::copy_n(key_.begin() + static_cast<std::ptrdiff_t>(at_), block, key.begin());
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < block; ++i) bits |= static_cast<std::uint32_t>(plain[i]);
    for (std::size_t i = 0; i < block; ++i) low[i] = static_cast<std::uint8_t>(plain[i]);
    std::uint8_t odd = bits > 0x7F;
    for (std::size_t i = 0; i < block; ++i) {
      const auto mixed = static_cast<std::uint8_t>(low[i] ^ key[i]);
      const std::uint8_t kept = mixed == 0x0A || mixed == 0x00 ? low[i] : mixed;
      odd |= static_cast<std::uint8_t>(low[i] == 0 || kept == 0x0A || kept > 0x7F);
      low[i] = kept;
    }
    if (odd != 0) return false;
    std::memcpy(to, low.data(), block);
    at_ = at_ + block == key_.size() ? 0 : at_ + block;
    return true;
  }

 private:
  /// Zero bytes stay and spend no key. What would become a line feed or a terminator stays as it is, so that the text
  /// survives text streams and wide strings.
  [[nodiscard]] std::uint8_t byte(std::uint8_t plain) {
    if (plain == 0) return 0;
    const auto mixed = static_cast<std::uint8_t>(plain ^ key_[at_]);
    if (++at_ == key_.size()) at_ = 0;
    return mixed == 0x0A || mixed == 0x00 ? plain : mixed;
  }

  std::span<const std::uint8_t> key_;
  std::size_t at_ = 0;
};

/// Writes units as a text stream does: UTF-8 with U+FFFD for an unpaired surrogate, and a line feed as two characters.
class TextWriter {
 public:
  explicit TextWriter(char* to) : to_(to) {}

  void unit(wchar_t unit) {
    if (high_ == 0 && unit < 0x80 && unit != L'\n') {
      *to_++ = static_cast<char>(unit);
      return;
    }
    if (high_ != 0 && unit >= 0xDC00 && unit <= 0xDFFF) {
      const std::array<wchar_t, 2> pair{std::exchange(high_, L'\0'), unit};
      put({pair.data(), pair.size()});
      return;
    }
    end_pair();
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      high_ = unit;
    } else if (unit == L'\n') {
      put(L"\r\n");
    } else {
      put({&unit, 1});
    }
  }

  /// The first half of a pair came last.
  [[nodiscard]] bool inside_pair() const { return high_ != 0; }
  /// Where whoever writes by itself goes on, outside of pairs, and up to where it went.
  [[nodiscard]] char* at() { return to_; }
  void went_to(char* to) { to_ = to; }

  /// A first half without its second is none.
  void end_pair() {
    if (high_ == 0) return;
    const wchar_t alone = std::exchange(high_, L'\0');
    put({&alone, 1});
  }

 private:
  void put(std::wstring_view units) { to_ += base::strings::to_utf8(units, to_); }

  char* to_;
  wchar_t high_ = L'\0';  // waits for its partner
};

}  // namespace

void put_length(std::span<std::uint8_t> to, std::uint32_t length) {
  std::memcpy(to.data(), &length, sizeof length);
}

std::uint32_t length_in(std::span<const std::uint8_t, log_format::length_size> bytes) {
  std::uint32_t length = 0;
  std::memcpy(&length, bytes.data(), sizeof length);
  return length;
}

TimeStamp time_stamp(const ports::LocalTime& time) {
  TimeStamp stamp;
  char* to = stamp.data();
  *to++ = '[';
  for (const std::uint16_t part : {time.hour, time.minute, time.second}) {
    to = put_two_digits(to, part);
    *to++ = ':';
  }
  *to++ = static_cast<char>('0' + time.millisecond / 100);
  to = put_two_digits(to, time.millisecond % 100);
  *to++ = ']';
  *to = ' ';
  return stamp;
}

std::span<const std::uint8_t> plain_line(const TimeStamp& stamp, std::wstring_view message,
                                         Scratch<std::uint8_t>& into) {
  const std::span<std::uint8_t> line = into.take((stamp.size() + message.size() + 1) * unit_size);
  std::array<wchar_t, log_format::time_stamp_length> wide;
  for (std::size_t i = 0; i < stamp.size(); ++i) wide[i] = static_cast<wchar_t>(stamp[i]);
  std::uint8_t* to = put_units(line.data(), {wide.data(), wide.size()});
  to = put_units(to, message);
  put_units(to, L"\n");
  return line;
}

std::span<const std::uint8_t> scrambled_line(const TimeStamp& stamp, std::wstring_view message,
                                             std::span<const std::uint8_t> key, Scratch<std::uint8_t>& into) {
  const std::wstring_view stored = message.substr(0, message.size() - 1);
  // Three bytes a unit, and one more where a key of the host's leaves line feeds.
  const std::span<std::uint8_t> line = into.take(stamp.size() + stored.size() * 4 + log_format::line_end.size());
  char* const begin = reinterpret_cast<char*>(line.data());
  TextWriter text(std::copy(stamp.begin(), stamp.end(), begin));
  Scrambler scrambler(key);
  for (std::size_t at = 0; at < stored.size();) {
    constexpr std::size_t block = Scrambler::block;
    if (at + block <= stored.size() && !text.inside_pair() && scrambler.ascii(&stored[at], text.at())) {
      text.went_to(text.at() + block);
      at += block;
    } else {
      text.unit(scrambler.unit(stored[at++]));
    }
  }
  text.end_pair();
  char* const end = std::copy(log_format::line_end.begin(), log_format::line_end.end(), text.at());
  return line.first(static_cast<std::size_t>(end - begin));
}

}  // namespace diagnostics
