#include "installer/utils/base/strings/base64.h"

#include <array>

namespace base::strings {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t no_digit = 0xFF;

constexpr std::array<std::uint8_t, 256> make_values() {
  std::array<std::uint8_t, 256> values{};
  for (std::uint8_t& value : values) value = no_digit;
  for (std::size_t i = 0; i < alphabet.size(); ++i) {
    values[static_cast<std::uint8_t>(alphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}
constexpr std::array<std::uint8_t, 256> values = make_values();

}  // namespace

std::string encode_base64(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = bytes.size() - i < 3 ? bytes.size() - i : 3;
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) text.push_back(k <= count ? alphabet[group >> (18 - 6 * k) & 63] : '=');
  }
  return text;
}

std::optional<std::size_t> decode_base64(std::string_view text, std::span<std::uint8_t> into) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && text.size() > padding && text[text.size() - 1 - padding] == '=') ++padding;
  const std::size_t size = text.size() / 4 * 3 - padding;
  if (size > into.size()) return std::nullopt;

  std::uint32_t bits = 0;
  std::size_t count = 0;
  std::size_t written = 0;
  for (const char c : text.substr(0, text.size() - padding)) {
    const std::uint8_t value = values[static_cast<std::uint8_t>(c)];
    if (value == no_digit) return std::nullopt;
    bits = bits << 6 | value;
    count += 6;
    if (count >= 8) {
      count -= 8;
      into[written++] = static_cast<std::uint8_t>(bits >> count);
    }
  }
  // The bits that a shorter group leaves over are zero in what an encoder writes.
  if ((bits & ((1U << count) - 1)) != 0) return std::nullopt;
  return size;
}

std::optional<std::vector<std::uint8_t>> decode_base64(std::string_view text) {
  std::vector<std::uint8_t> bytes(text.size() / 4 * 3);
  const std::optional<std::size_t> size = decode_base64(text, bytes);
  if (!size) return std::nullopt;
  bytes.resize(*size);
  return bytes;
}

}  // namespace base::strings
