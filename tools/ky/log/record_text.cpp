#include "tools/ky/log/record_text.h"

#include <algorithm>

#include "installer/utils/base/strings/utf8.h"

namespace log_tool {

namespace {

constexpr char digits[] = "0123456789abcdef";

void append_number(std::string& to, std::uint32_t value, std::uint32_t first_unit) {
  for (std::uint32_t unit = first_unit; unit > 0; unit /= 10) to.push_back(digits[value / unit % 10]);
}

bool is_control(wchar_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}
bool is_surrogate(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}
bool is_pair(std::wstring_view text, std::size_t at) {
  return is_surrogate(text[at]) && at + 1 < text.size() && base::strings::is_utf16(text.substr(at, 2));
}

/// Appends `text`, each unit that `special` picks by `escape`.
template <class Special, class Escape>
void append_escaped(std::string& to, std::wstring_view text, Special special, Escape escape) {
  for (std::size_t at = 0; at < text.size();) {
    const auto stop = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), special);
    const auto plain = static_cast<std::size_t>(stop - text.begin());
    to += base::strings::to_utf8(text.substr(at, plain - at));
    at = plain;
    if (at < text.size()) at += escape(at);
  }
}

}  // namespace

void append_time(std::string& to, std::uint32_t time, char before_milliseconds) {
  append_number(to, time / 3'600'000, 10);
  to.push_back(':');
  append_number(to, time / 60'000 % 60, 10);
  to.push_back(':');
  append_number(to, time / 1000 % 60, 10);
  to.push_back(before_milliseconds);
  append_number(to, time % 1000, 100);
}

std::wstring_view without_line_end(std::wstring_view message) {
  if (!message.ends_with(L'\n')) return message;
  message.remove_suffix(1);
  if (message.ends_with(L'\r')) message.remove_suffix(1);
  return message;
}

void append_shown(std::string& to, std::wstring_view text, std::size_t indent) {
  const auto special = [](wchar_t unit) { return is_control(unit) && unit != L'\t'; };
  append_escaped(to, text, special, [&](std::size_t at) {
    const auto unit = static_cast<unsigned>(text[at]);
    if (unit == '\n') {
      to.push_back('\n');
      to.append(indent, ' ');
    } else {
      to += {'\\', 'x', digits[unit >> 4 & 15], digits[unit & 15]};
    }
    return std::size_t{1};
  });
}

namespace {

/// Of units that `escaped` picks, too, no more is written than their number.
template <class Escaped>
void append_json_but(std::string& to, std::wstring_view text, Escaped escaped) {
  to.push_back('"');
  const auto special = [&](wchar_t unit) {
    return is_control(unit) || is_surrogate(unit) || unit == L'"' || unit == L'\\' || escaped(unit);
  };
  append_escaped(to, text, special, [&](std::size_t at) {
    const auto unit = static_cast<unsigned>(text[at]);
    if (is_pair(text, at)) {
      to += base::strings::to_utf8(text.substr(at, 2));
      return std::size_t{2};
    }
    if (unit == '"' || unit == '\\') {
      to += {'\\', static_cast<char>(unit)};
    } else if (unit == '\n') {
      to += "\\n";
    } else {
      to += {'\\', 'u', digits[unit >> 12 & 15], digits[unit >> 8 & 15], digits[unit >> 4 & 15], digits[unit & 15]};
    }
    return std::size_t{1};
  });
  to.push_back('"');
}

}  // namespace

void append_json(std::string& to, std::wstring_view text) {
  append_json_but(to, text, [](wchar_t) { return false; });
}

void append_script_json(std::string& to, std::wstring_view text) {
  append_json_but(to, text, [](wchar_t unit) {
    return unit == L'<' || unit == L'>' || unit == L'&' || unit == 0x2028 || unit == 0x2029;
  });
}

}  // namespace log_tool
