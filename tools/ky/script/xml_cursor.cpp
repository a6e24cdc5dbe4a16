#include "tools/ky/script/xml_cursor.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <utility>

#include "installer/utils/base/strings/utf8.h"

namespace script {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool is_letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool is_name_character(char c) {
  return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}
bool continues_character(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The length of the longest part at the front that is whole UTF-8.
std::size_t good_utf8(std::string_view text) {
  const auto to_boundary = [text](std::size_t at) {
    while (at < text.size() && continues_character(text[at])) ++at;
    return at;
  };
  std::size_t good = 0;
  std::size_t bad = text.size();
  while (bad - good > 1) {
    const std::size_t middle = to_boundary(good + (bad - good) / 2);
    if (middle >= bad) {
      // No character begins in the upper half.
      bad = good + (bad - good) / 2;
    } else if (base::strings::is_utf8(text.substr(good, middle - good))) {
      good = middle;
    } else {
      bad = middle;
    }
  }
  return good;
}

void append_utf8(char32_t character, std::string& out) {
  const auto put = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
  const auto code = static_cast<std::uint32_t>(character);
  if (code < 0x80) {
    put(code);
    return;
  }
  if (code < 0x800) {
    put(0xC0U | code >> 6);
  } else if (code < 0x10000) {
    put(0xE0U | code >> 12);
    put(0x80U | (code >> 6 & 0x3FU));
  } else {
    put(0xF0U | code >> 18);
    put(0x80U | (code >> 12 & 0x3FU));
    put(0x80U | (code >> 6 & 0x3FU));
  }
  put(0x80U | (code & 0x3FU));
}

}  // namespace

bool is_xml_character(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character < 0xD800 || (character >= 0xE000 && character < 0xFFFE) ||
         (character >= 0x10000 && character < 0x110000);
}

bool is_name(std::string_view text) {
  return !text.empty() && is_letter(text.front()) && std::all_of(text.begin(), text.end(), is_name_character);
}

XmlCursor::XmlCursor(std::string file, std::string_view text) : file_(std::move(file)), text_(text) {
  if (text_.starts_with(byte_order_mark)) text_.remove_prefix(byte_order_mark.size());
  check_characters();
}

void XmlCursor::check_characters() {
  if (!base::strings::is_utf8(text_)) {
    offset_ = good_utf8(text_);
    fail("the text is not UTF-8");
  }
  const auto bad = std::find_if(text_.begin(), text_.end(), [](char c) {
    return !is_xml_character(static_cast<unsigned char>(c)) && static_cast<unsigned char>(c) < 0x80;
  });
  if (bad == text_.end()) return;
  offset_ = static_cast<std::size_t>(bad - text_.begin());
  fail(*bad == '\0' ? "the text holds a NUL byte" : "the text holds a control character");
}

bool XmlCursor::take(std::string_view literal) {
  if (!comes(literal)) return false;
  offset_ += literal.size();
  return true;
}

void XmlCursor::expect(std::string_view literal) {
  if (take(literal)) return;
  fail((at_end() ? "the text ends where \"" : "expected \"") + std::string(literal) +
       (at_end() ? "\" is missing" : "\""));
}

bool XmlCursor::skip_space() {
  const std::size_t before = offset_;
  while (is_space(next())) ++offset_;
  return offset_ != before;
}

void XmlCursor::skip_between(std::vector<PlainComment>* comments) {
  skip_space();
  while (comes("<!--")) {
    const Position begin = here();
    const std::size_t end = text_.find("--", offset_ + 4);
    if (end == std::string_view::npos) fail_at(begin, "the comment does not end");
    if (text_.substr(end, 3) != "-->") fail_at(begin, "the comment holds \"--\"");
    if (comments != nullptr) comments->push_back({std::string(text_.substr(offset_ + 4, end - offset_ - 4)), begin});
    offset_ = end + 3;
    skip_space();
  }
}

std::string_view XmlCursor::name() {
  const std::size_t begin = offset_;
  if (!is_letter(next())) fail(at_end() ? "the text ends where a name is missing" : "expected a name");
  while (is_name_character(next()) || next() == ':') ++offset_;
  return text_.substr(begin, offset_ - begin);
}

std::string XmlCursor::value() {
  const Position begin = here();
  const char quote = next();
  if (quote != '"' && quote != '\'') fail("expected a value in quotes");
  ++offset_;
  std::string out;
  while (next() != quote) {
    if (at_end()) fail_at(begin, "the value does not end");
    if (next() == '<') fail("a value holds \"<\"; write \"&lt;\"");
    if (next() == '&') {
      reference(out);
      continue;
    }
    // A line end of two characters is one.
    if (!(next() == '\r' && text_.substr(offset_ + 1).starts_with('\n'))) out += is_space(next()) ? ' ' : next();
    ++offset_;
  }
  ++offset_;
  return out;
}

void XmlCursor::reference(std::string& out) {
  static constexpr std::pair<std::string_view, char> named[] = {
      {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
  // The longest that counts: &#x10FFFF; and some leading zeros.
  const std::string_view rest = text_.substr(offset_ + 1, 16);
  const std::size_t end = rest.find(';');
  if (end == std::string_view::npos) fail("\"&\" does not begin a reference; write \"&amp;\"");
  const std::string_view body = rest.substr(0, end);
  const auto* const found =
      std::find_if(std::begin(named), std::end(named), [body](const auto& row) { return row.first == body; });
  if (found != std::end(named)) {
    out.push_back(found->second);
  } else if (const char32_t character = numbered_reference(body); is_xml_character(character)) {
    append_utf8(character, out);
  } else {
    fail("unknown reference \"&" + std::string(body) + ";\"");
  }
  offset_ += 1 + end + 1;
}

char32_t XmlCursor::numbered_reference(std::string_view body) const {
  if (!body.starts_with('#')) return 0;
  body.remove_prefix(1);
  const bool hexadecimal = body.starts_with('x');
  if (hexadecimal) body.remove_prefix(1);
  std::uint32_t code = 0;
  const auto [end, error] = std::from_chars(body.data(), body.data() + body.size(), code, hexadecimal ? 16 : 10);
  return error == std::errc() && end == body.data() + body.size() ? static_cast<char32_t>(code) : 0;
}

Position XmlCursor::here() {
  for (; known_offset_ < offset_; ++known_offset_) {
    const char c = text_[known_offset_];
    if (c == '\n' || (c == '\r' && !text_.substr(known_offset_ + 1).starts_with('\n'))) {
      known_ = {known_.line + 1, 1};
    } else if (!continues_character(c) && c != '\r') {
      ++known_.column;
    }
  }
  return known_;
}

void XmlCursor::fail_at(Position at, std::string reason) const {
  throw ScriptError(file_, {{at, std::move(reason)}});
}

}  // namespace script
