#include "platform/native/xml_encoding.h"

#include "installer/utils/base/strings/utf8.h"
#include "installer/utils/base/strings/windows_1252.h"

namespace native {

namespace {

using namespace std::string_view_literals;

std::optional<std::string> from_utf16(std::string_view bytes, bool low_byte_first) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::wstring wide(bytes.size() / 2, L'\0');
  for (std::size_t at = 0; at < wide.size(); ++at) {
    const auto first = static_cast<unsigned char>(bytes[at * 2]);
    const auto second = static_cast<unsigned char>(bytes[at * 2 + 1]);
    wide[at] = static_cast<wchar_t>(low_byte_first ? first | second << 8 : first << 8 | second);
  }
  if (!base::strings::is_utf16(wide)) return std::nullopt;
  return base::strings::to_utf8(wide);
}

std::string from_single_bytes(std::string_view bytes, bool windows_1252) {
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const bool upper = windows_1252 && byte >= 0x80 && byte < 0xA0;
    wide.push_back(upper ? base::strings::windows_1252_upper[byte - 0x80U] : static_cast<wchar_t>(byte));
  }
  return base::strings::to_utf8(wide);
}

/// The encoding that the declaration names, in lower case; empty where it names none.
std::string declared_encoding(std::string_view bytes) {
  if (!bytes.starts_with("<?xml")) return {};
  std::string_view declaration = bytes.substr(0, bytes.find("?>"));
  const std::size_t key = declaration.find("encoding");
  if (key == std::string_view::npos) return {};
  declaration.remove_prefix(key);
  const std::size_t open = declaration.find_first_of("'\"");
  if (open == std::string_view::npos) return {};
  declaration.remove_prefix(open + 1);
  std::string name(declaration.substr(0, declaration.find_first_of("'\"")));
  for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return name;
}

}  // namespace

std::optional<std::string> document_to_utf8(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE"sv)) return from_utf16(bytes.substr(2), true);
  if (bytes.starts_with("\xFE\xFF"sv)) return from_utf16(bytes.substr(2), false);
  if (bytes.starts_with("<\0?\0"sv)) return from_utf16(bytes, true);
  if (bytes.starts_with("\0<\0?"sv)) return from_utf16(bytes, false);
  if (bytes.starts_with("\xEF\xBB\xBF"sv)) return std::string(bytes.substr(3));
  const std::string encoding = declared_encoding(bytes);
  if (encoding.empty() || encoding == "utf-8" || encoding == "us-ascii") return std::string(bytes);
  if (encoding == "iso-8859-1") return from_single_bytes(bytes, false);
  if (encoding == "windows-1252") return from_single_bytes(bytes, true);
  return std::nullopt;
}

}  // namespace native
