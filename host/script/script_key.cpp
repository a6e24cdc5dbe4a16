#include "host/script/script_key.h"

#include <cstddef>

#include "installer/utils/base/strings/base64.h"

namespace host {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

std::string parse_script_key(std::string_view text, ScriptKey& out) {
  std::string_view rest = trimmed(text);
  if (rest.empty()) return "the file is empty";
  if (!rest.starts_with(script_key_begin)) return "it does not begin with \"" + std::string(script_key_begin) + '"';
  rest.remove_prefix(script_key_begin.size());
  if (!rest.ends_with(script_key_end)) return "it does not end with \"" + std::string(script_key_end) + '"';
  rest.remove_suffix(script_key_end.size());

  std::string digits;
  for (const char c : rest) {
    if (blanks.find(c) == std::string_view::npos) digits.push_back(c);
  }
  std::array<std::uint8_t, 64> bytes{};
  const auto size = base::strings::decode_base64(digits, bytes);
  if (!size.has_value()) return "what stands between its first and last line is not base64 of a key";
  if (*size != out.size()) return "the key has " + std::to_string(*size) + " bytes instead of 32";
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = bytes[i];
  return {};
}

std::string format_script_key(const ScriptKey& key) {
  return std::string(script_key_begin) + '\n' + base::strings::encode_base64(key) + '\n' + std::string(script_key_end) +
         '\n';
}

}  // namespace host
