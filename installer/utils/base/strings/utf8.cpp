#include "installer/utils/base/strings/utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace base::strings {

namespace {

constexpr char32_t replacement = 0xFFFD;

struct Decoded {
  char32_t character;
  std::size_t length;
  bool well_formed;
};

/// The table of well-formed sequences: the second byte's range depends on the first, which shuts out overlong forms,
/// surrogates and characters beyond U+10FFFF.
struct Lead {
  unsigned char length, low, high;
  char32_t bits;
};

Lead lead_of(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {2, 0x80, 0xBF, byte & 0x1Fu};
  if (byte == 0xE0) return {3, 0xA0, 0xBF, 0};
  if (byte == 0xED) return {3, 0x80, 0x9F, 0xD};
  if (byte >= 0xE1 && byte <= 0xEF) return {3, 0x80, 0xBF, byte & 0x0Fu};
  if (byte == 0xF0) return {4, 0x90, 0xBF, 0};
  if (byte >= 0xF1 && byte <= 0xF3) return {4, 0x80, 0xBF, byte & 0x07u};
  if (byte == 0xF4) return {4, 0x80, 0x8F, 4};
  return {0, 0, 0, 0};
}

Decoded decode(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(at) < 0x80) return {byte(at), 1, true};
  const Lead lead = lead_of(byte(at));
  if (lead.length == 0) return {replacement, 1, false};
  char32_t character = lead.bits;
  for (std::size_t i = 1; i < lead.length; ++i) {
    const bool fits = at + i < text.size() && byte(at + i) >= (i == 1 ? lead.low : 0x80) &&
                      byte(at + i) <= (i == 1 ? lead.high : 0xBF);
    if (!fits) return {replacement, i, false};
    character = (character << 6) | (byte(at + i) & 0x3Fu);
  }
  return {character, lead.length, true};
}

/// Text is mostly ASCII, none of which needs decoding: it is taken by the block.
using Block = std::array<unsigned char, 16>;

/// False where not all of the block that begins at `at` is there and ASCII.
bool ascii_block(std::string_view text, std::size_t at, Block& out) {
  if (at + out.size() > text.size()) return false;
  std::memcpy(out.data(), text.data() + at, out.size());
  std::array<std::uint64_t, 2> halves{};
  std::memcpy(halves.data(), out.data(), out.size());
  return ((halves[0] | halves[1]) & 0x8080808080808080) == 0;
}

void widen(const Block& block, wchar_t* to) {
  for (std::size_t i = 0; i < block.size(); ++i) to[i] = static_cast<wchar_t>(block[i]);
}

/// Where the ASCII that begins at `at` ends.
std::size_t ascii_end(std::string_view text, std::size_t at) {
  for (Block block; ascii_block(text, at, block);) at += block.size();
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

/// The same for units, to bytes at `to`, which are written in any case.
bool narrowed_block(std::wstring_view wide, std::size_t at, char* to) {
  constexpr std::size_t size = std::tuple_size_v<Block>;
  if (at + size > wide.size()) return false;
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < size; ++i) bits |= static_cast<std::uint32_t>(wide[at + i]);
  for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<char>(wide[at + i]);
  return bits < 0x80;
}

bool is_high_surrogate(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_surrogate(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}
bool is_low_surrogate(wchar_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void put_utf8(char*& out, char32_t c) {
  const auto put = [&](char32_t byte) { *out++ = static_cast<char>(static_cast<unsigned char>(byte)); };
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

}  // namespace

std::wstring to_wide(std::string_view utf8) {
  std::wstring out;
  to_wide(utf8, out);
  return out;
}

void to_wide(std::string_view utf8, std::wstring& out) {
  out.resize(utf8.size());
  out.resize(to_wide(utf8, out.data()));
}

std::size_t to_wide(std::string_view utf8, wchar_t* out) {
  wchar_t* to = out;
  for (std::size_t at = 0; at < utf8.size();) {
    Block block;
    for (; ascii_block(utf8, at, block); at += block.size(), to += block.size()) widen(block, to);
    const std::size_t rest = utf8.size() - at;
    if (rest < block.size() && block.size() <= utf8.size() && ascii_block(utf8, utf8.size() - block.size(), block)) {
      // Some of the block stands there already, and stands there again: ASCII is one unit for each byte.
      widen(block, to + rest - block.size());
      return static_cast<std::size_t>(to + rest - out);
    }
    while (at < utf8.size() && static_cast<unsigned char>(utf8[at]) < 0x80) *to++ = static_cast<wchar_t>(utf8[at++]);
    if (at == utf8.size()) break;
    const Decoded next = decode(utf8, at);
    at += next.length;
    if (next.character < 0x10000) {
      *to++ = static_cast<wchar_t>(next.character);
    } else {
      const char32_t offset = next.character - 0x10000;
      *to++ = static_cast<wchar_t>(0xD800 + (offset >> 10));
      *to++ = static_cast<wchar_t>(0xDC00 + (offset & 0x3FF));
    }
  }
  return static_cast<std::size_t>(to - out);
}

std::string to_utf8(std::wstring_view wide) {
  std::string out(wide.size() * 3, '\0');
  out.resize(to_utf8(wide, out.data()));
  return out;
}

std::size_t to_utf8(std::wstring_view wide, char* out) {
  char* to = out;
  for (std::size_t at = 0; at < wide.size(); ++at) {
    // A unit takes up to three bytes, so that there is room for a block that is then written otherwise.
    for (; narrowed_block(wide, at, to); at += std::tuple_size_v<Block>) to += std::tuple_size_v<Block>;
    if (at == wide.size()) break;
    const wchar_t unit = wide[at];
    if (is_high_surrogate(unit) && at + 1 < wide.size() && is_low_surrogate(wide[at + 1])) {
      const auto high = static_cast<char32_t>(unit) - 0xD800;
      put_utf8(to, 0x10000 + (high << 10) + (static_cast<char32_t>(wide[++at]) - 0xDC00));
    } else {
      put_utf8(to, is_surrogate(unit) ? replacement : static_cast<char32_t>(unit));
    }
  }
  return static_cast<std::size_t>(to - out);
}

bool is_utf8(std::string_view bytes) {
  return !first_ill_formed(bytes);
}

std::optional<std::size_t> first_ill_formed(std::string_view bytes) {
  for (std::size_t at = 0; (at = ascii_end(bytes, at)) < bytes.size();) {
    const Decoded next = decode(bytes, at);
    if (!next.well_formed) return at;
    at += next.length;
  }
  return std::nullopt;
}

bool is_utf16(std::wstring_view wide) {
  for (std::size_t at = 0; at < wide.size(); ++at) {
    if (!is_surrogate(wide[at])) continue;
    if (!is_high_surrogate(wide[at]) || at + 1 == wide.size() || !is_low_surrogate(wide[at + 1])) return false;
    ++at;
  }
  return true;
}

}  // namespace base::strings
