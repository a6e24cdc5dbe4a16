#include "platform/machine/unicode.h"

#include <cstdint>

namespace machine {

namespace {

constexpr char32_t replacement = 0xFFFD;

struct Decoded {
  char32_t character = replacement;
  std::size_t length = 1;
  bool good = false;
};

[[nodiscard]] std::uint8_t byte_at(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}

// How many bytes follow a lead byte, and what range the first of them must be in, which keeps out overlong forms,
// surrogates and what lies beyond U+10FFFF.
struct Lead {
  std::size_t following;
  std::uint8_t low;
  std::uint8_t high;
  char32_t bits;
};

[[nodiscard]] Lead lead_of(std::uint8_t first) {
  if (first >= 0xC2 && first <= 0xDF) return {1, 0x80, 0xBF, first & 0x1Fu};
  if (first == 0xE0) return {2, 0xA0, 0xBF, 0};
  if (first == 0xED) return {2, 0x80, 0x9F, 0xD};
  if (first >= 0xE1 && first <= 0xEF) return {2, 0x80, 0xBF, first & 0xFu};
  if (first == 0xF0) return {3, 0x90, 0xBF, 0};
  if (first >= 0xF1 && first <= 0xF3) return {3, 0x80, 0xBF, first & 0x7u};
  if (first == 0xF4) return {3, 0x80, 0x8F, 4};
  return {0, 0, 0, 0};
}

[[nodiscard]] Decoded decode(std::string_view text, std::size_t at) {
  const std::uint8_t first = byte_at(text, at);
  if (first < 0x80) return {first, 1, true};
  const Lead lead = lead_of(first);
  if (lead.following == 0) return {};
  char32_t character = lead.bits;
  for (std::size_t i = 1; i <= lead.following; ++i) {
    if (at + i >= text.size()) return {replacement, i, false};
    const std::uint8_t next = byte_at(text, at + i);
    const std::uint8_t low = i == 1 ? lead.low : std::uint8_t{0x80};
    const std::uint8_t high = i == 1 ? lead.high : std::uint8_t{0xBF};
    if (next < low || next > high) return {replacement, i, false};
    character = (character << 6) | (next & 0x3Fu);
  }
  return {character, lead.following + 1, true};
}

void append_utf8(std::string& out, char32_t c) {
  const auto put = [&out](char32_t bits) { out.push_back(static_cast<char>(static_cast<unsigned char>(bits))); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6));
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | (c >> 18));
    put(0x80 | ((c >> 12) & 0x3F));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

[[nodiscard]] bool is_high(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
[[nodiscard]] bool is_low(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}
[[nodiscard]] char32_t unit_at(std::wstring_view units, std::size_t at) {
  return static_cast<char32_t>(units[at]);
}
[[nodiscard]] bool pair_at(std::wstring_view units, std::size_t at) {
  return is_high(unit_at(units, at)) && at + 1 < units.size() && is_low(unit_at(units, at + 1));
}

}  // namespace

std::wstring utf16_from(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const Decoded decoded = decode(utf8, at);
    at += decoded.length;
    if (decoded.character < 0x10000) {
      out.push_back(static_cast<wchar_t>(decoded.character));
    } else {
      const char32_t beyond = decoded.character - 0x10000;
      out.push_back(static_cast<wchar_t>(0xD800 + (beyond >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + (beyond & 0x3FF)));
    }
  }
  return out;
}

std::string utf8_from(std::wstring_view units) {
  std::string out;
  out.reserve(units.size());
  for (std::size_t at = 0; at < units.size(); ++at) {
    const char32_t unit = unit_at(units, at);
    if (pair_at(units, at)) {
      append_utf8(out, 0x10000 + ((unit - 0xD800) << 10) + (unit_at(units, at + 1) - 0xDC00));
      ++at;
    } else {
      append_utf8(out, is_high(unit) || is_low(unit) ? replacement : unit);
    }
  }
  return out;
}

std::optional<std::size_t> first_ill_formed(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const Decoded decoded = decode(utf8, at);
    if (!decoded.good) return at;
    at += decoded.length;
  }
  return std::nullopt;
}

bool well_formed(std::wstring_view units) {
  for (std::size_t at = 0; at < units.size(); ++at) {
    if (pair_at(units, at)) {
      ++at;
    } else if (is_high(unit_at(units, at)) || is_low(unit_at(units, at))) {
      return false;
    }
  }
  return true;
}

}  // namespace machine
