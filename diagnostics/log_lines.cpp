#include "diagnostics/log_lines.h"

#include <algorithm>
#include <bit>
#include <cstring>

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

char* put_digits(char* to, std::uint32_t value, int digits) {
  for (int i = digits - 1; i >= 0; --i, value /= 10) to[i] = static_cast<char>('0' + value % 10);
  return to + digits;
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
    to = put_digits(to, part, 2);
    *to++ = ':';
  }
  to = put_digits(to, time.millisecond, 3);
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
  Scrambler scrambler(key);
  Scratch<wchar_t> scratch;
  const std::span<wchar_t> units = scratch.take(message.size() * 2);
  std::size_t count = 0;
  for (const wchar_t plain : message.substr(0, message.size() - 1)) {
    units[count] = scrambler.unit(plain);
    // A text stream writes a line feed as two characters. None comes out of the built-in key, but hosts have their own.
    if (units[count] == L'\n') {
      units[count++] = L'\r';
      units[count] = L'\n';
    }
    ++count;
  }
  const std::span<std::uint8_t> line = into.take(stamp.size() + count * 3 + log_format::line_end.size());
  char* const begin = reinterpret_cast<char*>(line.data());
  char* to = std::copy(stamp.begin(), stamp.end(), begin);
  to += base::strings::to_utf8({units.data(), count}, to);
  to = std::copy(log_format::line_end.begin(), log_format::line_end.end(), to);
  return line.first(static_cast<std::size_t>(to - begin));
}

}  // namespace diagnostics
