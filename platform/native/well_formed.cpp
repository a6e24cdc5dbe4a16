#include "platform/native/well_formed.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <vector>

namespace native {

namespace {

constexpr std::string_view space = " \t\r\n";

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

constexpr Stops markup_or_reference("<&");
constexpr Stops after_element_name(" \t\r\n/>");
constexpr Stops after_attribute_name(" \t\r\n=");
constexpr Stops quotes("\"'");

/// Goes over the text once. pugixml took it, so that every construct is known to end.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  std::optional<XmlFault> run() {
    if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
    while (!fault_ && at_ < text_.size()) {
      content();
      if (!fault_ && at_ < text_.size()) markup();
    }
    return fault_;
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

  bool at(std::string_view what) const { return text_.substr(at_).starts_with(what); }

  /// Text up to the next markup.
  void content() {
    while (!fault_) {
      const std::size_t begin = at_;
      at_ = markup_or_reference.next(text_, at_);
      if (depth_ == 0) {
        const std::size_t other = text_.find_first_not_of(space, begin);
        if (other < at_ || at("&")) return fail(std::min(other, at_), "text outside of the root element");
      }
      if (!at("&")) return;
      reference();
    }
  }

  void reference() {
    const std::size_t begin = at_++;
    const std::size_t end = text_.find(';', at_);
    if (end == std::string_view::npos || !known(text_.substr(at_, end - at_)))
      return fail(begin, "an unknown reference");
    at_ = end + 1;
  }

  static bool known(std::string_view name) {
    static constexpr std::array<std::string_view, 5> names = {"lt", "gt", "amp", "quot", "apos"};
    if (!name.starts_with('#')) return std::find(names.begin(), names.end(), name) != names.end();
    const bool hexadecimal = name.starts_with("#x");
    const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
    const char* const end = digits.data() + digits.size();
    std::uint32_t value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
    return error == std::errc() && stop == end && value != 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
  }

  void markup() {
    if (at("<!--")) {
      skip_past("-->");
    } else if (at("<![CDATA[")) {
      skip_past("]]>");
    } else if (at("<?")) {
      skip_past("?>");
    } else if (at("<!")) {
      fail(at_, "a document type is not allowed");
    } else if (at("</")) {
      --depth_;
      skip_past(">");
    } else {
      start_tag();
    }
  }

  void start_tag() {
    if (depth_ == 0 && roots_++ != 0) return fail(at_, "a second root element");
    names_.clear();
    at_ = after_element_name.next(text_, at_);
    while (!fault_ && at_ < text_.size()) {
      at_ = std::min(text_.find_first_not_of(space, at_), text_.size());
      if (at(">") || at("/")) break;
      attribute();
    }
    if (fault_) return;  // The place is then no longer one in the text.
    if (!at("/")) ++depth_;
    skip_past(">");
  }

  void attribute() {
    const std::size_t begin = at_;
    at_ = after_attribute_name.next(text_, at_);
    const std::string_view name = text_.substr(begin, at_ - begin);
    if (std::find(names_.begin(), names_.end(), name) != names_.end())
      return fail(begin, "an attribute is given twice");
    names_.push_back(name);
    at_ = std::min(quotes.next(text_, at_), text_.size() - 1);
    const std::size_t end = std::min(text_.find(text_[at_], at_ + 1), text_.size());
    const std::string_view value = text_.substr(0, end);
    const std::size_t markup = std::min(value.find('<', at_), end);
    for (at_ = value.find('&', at_); !fault_ && at_ < markup; at_ = value.find('&', at_)) reference();
    if (markup < end) fail(markup, "\"<\" in a value");
    at_ = std::min(end + 1, text_.size());  // Behind the closing quote.
  }

  const std::string_view text_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
  std::size_t roots_ = 0;
  std::vector<std::string_view> names_;
  std::optional<XmlFault> fault_;
};

}  // namespace

std::optional<XmlFault> find_xml_fault(std::string_view utf8) {
  return Scanner(utf8).run();
}

}  // namespace native
