#include "platform/native/well_formed.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <vector>

namespace native {

namespace {

/// As many levels as MSXML takes; whoever walks down a document may do so by recursion.
constexpr std::size_t most_levels = 256;

constexpr std::string_view space = " \t\r\n";

bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool is_name(std::string_view text) {
  return !text.empty() && is_letter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
    return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  });
}

/// A set of characters to stop at, with one look for each character passed: the whole text goes by here.
class Stops {
 public:
  constexpr explicit Stops(std::string_view characters) {
    for (const char c : characters) stops_[static_cast<unsigned char>(c)] = true;
  }
  /// The place of the first of them from `at` on; the text's end where there is none.
  [[nodiscard]] std::size_t next(std::string_view text, std::size_t at) const {
    while (at < text.size() && !stops_[static_cast<unsigned char>(text[at])]) ++at;
    return at;
  }

 private:
  std::array<bool, 256> stops_{};
};

constexpr Stops after_element_name(" \t\r\n/>:");
constexpr Stops after_attribute_name(" \t\r\n=:");
constexpr Stops quotes("\"'");

bool is_xml_character(std::uint32_t value) {
  const bool control = value < 0x20 && value != '\t' && value != '\n' && value != '\r';
  return !control && (value < 0xD800 || value > 0xDFFF) && value != 0xFFFE && value != 0xFFFF && value <= 0x10FFFF;
}

/// True where a control character stands that XML does not have. Without a branch many bytes go by at a time; scripts,
/// which are one line, have no control characters at all.
bool has_bad_control(std::string_view text) {
  unsigned char least = 0xFF;
  for (const char c : text) least = std::min(least, static_cast<unsigned char>(c));
  if (least >= 0x20) return false;
  unsigned char bad = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool space_character = (byte == '\t') | (byte == '\n') | (byte == '\r');
    bad = static_cast<unsigned char>(bad | ((byte < 0x20) & !space_character));
  }
  return bad != 0;
}

/// The place of the first character that XML does not have, in UTF-8; npos where all are well.
std::size_t bad_character(std::string_view text) {
  if (has_bad_control(text)) {
    const auto* const found =
        std::find_if(text.begin(), text.end(), [](char c) { return !is_xml_character(static_cast<unsigned char>(c)); });
    return static_cast<std::size_t>(found - text.begin());
  }
  for (std::size_t at = text.find("\xEF\xBF"); at != std::string_view::npos; at = text.find("\xEF\xBF", at + 1)) {
    const auto last = static_cast<unsigned char>(text.substr(at + 2).front());
    if (last >= 0xBE) return at;  // U+FFFE and U+FFFF
  }
  return std::string_view::npos;
}

/// Takes white space, `key`, "=" and a quoted value from the front of `text`; the value, or nothing where they are not
/// there.
std::optional<std::string_view> take(std::string_view& text, std::string_view key) {
  std::string_view rest = text;
  const auto skip_space = [&rest] { rest.remove_prefix(std::min(rest.find_first_not_of(space), rest.size())); };
  skip_space();
  if (rest.size() == text.size() || !rest.starts_with(key)) return std::nullopt;
  rest.remove_prefix(key.size());
  skip_space();
  if (!rest.starts_with('=')) return std::nullopt;
  rest.remove_prefix(1);
  skip_space();
  if (!rest.starts_with('"') && !rest.starts_with('\'')) return std::nullopt;
  const std::size_t end = rest.find(rest.front(), 1);
  if (end == std::string_view::npos) return std::nullopt;
  text = rest.substr(end + 1);
  return rest.substr(1, end - 1);
}

/// `text` begins with "<?xml"; its "?>" is left out.
bool is_declaration(std::string_view text) {
  text.remove_prefix(5);
  if (take(text, "version") != "1.0") return false;
  const auto encoding = take(text, "encoding");
  const auto standalone = take(text, "standalone");
  return (!encoding || !encoding->empty()) && (!standalone || standalone == "yes" || standalone == "no") &&
         text.find_first_not_of(space) == std::string_view::npos;
}

/// Goes over the text once. pugixml took it, so that every construct is known to end.
class Scanner {
 public:
  explicit Scanner(std::string_view text)
      : text_(text), plain_(text.find('&') == std::string_view::npos && text.find("]]>") == std::string_view::npos) {}

  XmlFindings run() {
    if (text_.starts_with("\xEF\xBB\xBF")) begin_ = at_ = 3;
    if (const std::size_t bad = bad_character(text_); bad != std::string_view::npos)
      fail(bad, "a character that XML does not have");
    while (!fault_ && at_ < text_.size()) {
      content();
      if (!fault_ && at_ < text_.size()) markup();
    }
    return findings_;
  }

 private:
  void fail(std::size_t offset, const char* what) {
    if (!fault_) fault_ = XmlFault{offset, what};
  }

  /// Sets the place behind the next `end`.
  void skip_past(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    at_ = found == std::string_view::npos ? text_.size() : found + end.size();
  }
  void skip_past(char end) {
    const std::size_t found = text_.find(end, at_);
    at_ = found == std::string_view::npos ? text_.size() : found + 1;
  }

  bool at(const char* what) const { return text_.substr(at_).starts_with(what); }
  bool at(char what) const { return at_ < text_.size() && text_[at_] == what; }

  /// Text up to the next markup.
  void content() {
    if (at('<')) return;
    const std::size_t begin = at_;
    at_ = std::min(text_.find('<', at_), text_.size());
    if (depth_ == 0) {
      const std::size_t other = text_.find_first_not_of(space, begin);
      if (other < at_) return fail(other, "text outside of the root element");
    }
    if (!plain_) texts(begin, at_);
  }

  /// What a text between markup may not hold.
  void texts(std::size_t begin, std::size_t end) {
    const std::size_t close = text_.substr(0, end).find("]]>", begin);
    if (close != std::string_view::npos) fail(close, "\"]]>\" in a text");
    references(begin, end);
  }

  void references(std::size_t begin, std::size_t end) {
    const std::string_view text = text_.substr(0, end);
    for (std::size_t at = text.find('&', begin); at < end; at = text.find('&', at + 1)) {
      const std::size_t close = text.find(';', at);
      if (close == std::string_view::npos || !known(text.substr(at + 1, close - at - 1))) {
        return fail(at, "an unknown reference");
      }
    }
  }

  static bool known(std::string_view name) {
    static constexpr std::array<std::string_view, 5> names = {"lt", "gt", "amp", "quot", "apos"};
    if (!name.starts_with('#')) return std::find(names.begin(), names.end(), name) != names.end();
    const bool hexadecimal = name.starts_with("#x");
    const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
    const char* const end = digits.data() + digits.size();
    std::uint32_t value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
    return error == std::errc() && stop == end && is_xml_character(value);
  }

  void markup() {
    const char next = text_.substr(at_ + 1, 1).empty() ? '\0' : text_[at_ + 1];
    if (next == '/') {
      end_element();
      at_ += 2;
      if (depth_ == 0) skip_past('>');  // What follows elsewhere is looked at with the text behind.
    } else if (next == '?') {
      instruction();
    } else if (next != '!') {
      start_tag();
    } else if (at("<!--")) {
      comment();
    } else if (depth_ != 0 && at("<![CDATA[")) {
      skip_past("]]>");
    } else {
      fail(at_, at("<![CDATA[") ? "text outside of the root element" : "a document type is not allowed");
    }
  }

  void comment() {
    const std::size_t dashes = text_.find("--", at_ + 4);
    if (dashes == std::string_view::npos || text_.substr(dashes + 2, 1) != ">")
      return fail(dashes, "\"--\" in a comment");
    at_ = dashes + 3;
  }

  void instruction() {
    const std::size_t end = text_.find("?>", at_);
    const std::string_view text = text_.substr(at_, end - at_);
    const std::string_view target = text.substr(2, text.find_first_of(space) - 2);
    if (end == std::string_view::npos || !is_name(target)) return fail(at_, "a bad instruction");
    const bool declares =
        target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l';
    if (declares && (at_ != begin_ || !is_declaration(text))) return fail(at_, "a bad or misplaced declaration");
    at_ = end + 2;
  }

  void start_tag() {
    if (depth_ == 0 && roots_++ != 0) return fail(at_, "a second root element");
    const std::size_t begin = at_++;
    if (++depth_ > most_levels) return fail(begin, "elements are nested too deeply");
    names_.clear();
    used_.clear();
    name(after_element_name);
    while (!fault_ && at_ < text_.size()) {
      at_ = std::min(text_.find_first_not_of(space, at_), text_.size());
      if (at('>') || at('/')) break;
      attribute();
    }
    for (const std::string_view prefix : used_) {
      if (!is_declared(prefix)) fail(begin, "an undeclared prefix");
    }
    if (fault_) return;  // The place is then no longer one in the text.
    const bool ends = at('/');
    if (ends) end_element();
    at_ = std::min(at_ + (ends ? 2 : 1), text_.size());
  }

  void end_element() {
    while (!declared_.empty() && declared_.back().depth == depth_) declared_.pop_back();
    --depth_;
  }

  /// Goes behind a name, and notes what it says of namespaces.
  std::string_view name(const Stops& ends) {
    const std::size_t begin = at_;
    at_ = ends.next(text_, at_);
    if (at(':')) prefixed_name(begin, ends);
    return text_.substr(begin, at_ - begin);
  }

  void prefixed_name(std::size_t begin, const Stops& ends) {
    const std::string_view prefix = text_.substr(begin, at_ - begin);
    const std::size_t local = ++at_;
    at_ = ends.next(text_, at_);
    if (at(':') || at_ == local || !is_letter(text_[local]) || prefix.empty()) fail(begin, "a bad name");
    if (prefix == "xmlns") {
      declared_.push_back({text_.substr(local, at_ - local), depth_});
      findings_.namespaces = true;
    } else {
      used_.push_back(prefix);
    }
  }

  bool is_declared(std::string_view prefix) const {
    return prefix == "xml" || std::any_of(declared_.begin(), declared_.end(),
                                          [prefix](const Declared& each) { return each.prefix == prefix; });
  }

  void attribute() {
    const std::size_t begin = at_;
    const std::string_view name = this->name(after_attribute_name);
    if (name.starts_with("xml")) {
      findings_.namespaces = findings_.namespaces || name == "xmlns";
      findings_.space_rules = findings_.space_rules || name == "xml:space";
    }
    if (std::find(names_.begin(), names_.end(), name) != names_.end())
      return fail(begin, "an attribute is given twice");
    names_.push_back(name);
    at_ = std::min(quotes.next(text_, at_), text_.size() - 1);
    const std::size_t end = std::min(text_.find(text_[at_], at_ + 1), text_.size());
    const std::size_t markup = std::min(text_.substr(0, end).find('<', at_), end);
    if (!plain_) references(at_, markup);
    if (markup < end) fail(markup, "\"<\" in a value");
    at_ = std::min(end + 1, text_.size());  // Behind the closing quote.
  }

  struct Declared {
    std::string_view prefix;
    std::size_t depth;
  };

  const std::string_view text_;
  const bool plain_;  // there is nothing that a text could be wrong in
  std::size_t begin_ = 0;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
  std::size_t roots_ = 0;
  std::vector<std::string_view> names_;
  std::vector<std::string_view> used_;  // prefixes of the start tag
  std::vector<Declared> declared_;
  XmlFindings findings_;
  std::optional<XmlFault>& fault_ = findings_.fault;
};

}  // namespace

XmlFindings examine_xml(std::string_view utf8) {
  return Scanner(utf8).run();
}

}  // namespace native
