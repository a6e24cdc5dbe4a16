#include "platform/machine/base64.h"

#include <cstddef>

namespace machine {

namespace {
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
}

std::string base64_from(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = bytes.size() - i;
    const std::uint32_t group = (std::uint32_t{bytes[i]} << 16) | (count > 1 ? std::uint32_t{bytes[i + 1]} << 8 : 0U) |
                                (count > 2 ? std::uint32_t{bytes[i + 2]} : 0U);
    text.push_back(alphabet[group >> 18]);
    text.push_back(alphabet[(group >> 12) & 63]);
    text.push_back(count > 1 ? alphabet[(group >> 6) & 63] : '=');
    text.push_back(count > 2 ? alphabet[group & 63] : '=');
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> bytes_from_base64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (std::size_t i = 0; i < text.size(); i += 4) {
    const std::string_view group = text.substr(i, 4);
    const bool last = i + 4 == text.size();
    const std::size_t padding = !last || group[3] != '=' ? 0 : (group[2] == '=' ? 2 : 1);
    std::uint32_t bits = 0;
    for (std::size_t j = 0; j < 4; ++j) {
      const std::size_t value = j >= 4 - padding ? 0 : alphabet.find(group[j]);
      if (value == std::string_view::npos) return std::nullopt;
      bits = (bits << 6) | static_cast<std::uint32_t>(value);
    }
    for (std::size_t j = 0; j < 3 - padding; ++j) bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * j)));
    if (padding != 0 && (bits & (padding == 1 ? 0xFFU : 0xFFFFU)) != 0) return std::nullopt;
  }
  return bytes;
}

}  // namespace machine
