#include "platform/native/xpath_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace native {

namespace {

constexpr std::string_view space = " \t\r\n";
constexpr std::string_view in_no_namespace = "[namespace-uri()='']";

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool starts_name(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool is_operator(std::string_view name) {
  static constexpr std::array<std::string_view, 4> operators = {"and", "or", "div", "mod"};
  return std::find(operators.begin(), operators.end(), name) != operators.end();
}

/// Copies the expression token by token. A name is an operator where an operand stands before it, an axis before "::",
/// a function before "(", and a test of names otherwise.
class Copier {
 public:
  Copier(std::string_view text, bool namespaces) : text_(text), namespaces_(namespaces) {}

  std::optional<std::string> run() {
    out_.reserve(text_.size());
    while (at_ < text_.size() && !unbound_) {
      const char c = text_[at_];
      if (space.find(c) != std::string_view::npos) {
        copy(1);
      } else if (starts_name(c)) {
        name();
      } else {
        other(c);
      }
    }
    if (unbound_) return std::nullopt;
    return std::move(out_);
  }

 private:
  void copy(std::size_t count) {
    out_ += text_.substr(at_, count);
    at_ = std::min(at_ + count, text_.size());
  }

  /// What follows behind white space.
  std::string_view ahead() const {
    const std::size_t next = text_.find_first_not_of(space, at_);
    return next == std::string_view::npos ? std::string_view() : text_.substr(next);
  }

  std::size_t name_length() const {
    std::size_t end = at_;
    while (end < text_.size() &&
           (starts_name(text_[end]) || is_digit(text_[end]) || text_[end] == '-' || text_[end] == '.')) {
      ++end;
    }
    return end - at_;
  }

  void name() {
    const std::string_view name = text_.substr(at_, name_length());
    copy(name.size());
    const std::string_view next = ahead();
    const bool of_attribute = std::exchange(attribute_, false);
    if (std::exchange(behind_operand_, false) && is_operator(name)) return;
    if (next.starts_with("::")) {
      attribute_ = name == "attribute";
      copy(text_.find("::", at_) + 2 - at_);
    } else if (next.starts_with(':')) {
      unbound_ = name != "xml";
      copy(text_.find(':', at_) + 1 - at_);
      copy(std::max<std::size_t>(name_length(), ahead().starts_with('*') ? 1 : 0));
      behind_operand_ = true;
    } else if (!next.starts_with('(')) {
      if (namespaces_ && !of_attribute) out_ += in_no_namespace;
      behind_operand_ = true;
    }
  }

  void other(char c) {
    attribute_ = c == '@';
    if (c == '"' || c == '\'') {
      copy(std::min(text_.find(c, at_ + 1), text_.size() - 1) + 1 - at_);
      behind_operand_ = true;
      return;
    }
    copy(1);
    // A star is a test of names, unless it multiplies.
    behind_operand_ = c == ')' || c == ']' || c == '.' || is_digit(c) || (c == '*' && !behind_operand_);
  }

  const std::string_view text_;
  const bool namespaces_;
  std::size_t at_ = 0;
  bool behind_operand_ = false;
  bool attribute_ = false;  // the next name is an attribute's
  bool unbound_ = false;
  std::string out_;
};

}  // namespace

std::optional<std::string> xpath_for_pugixml(std::string_view xpath, bool namespaces) {
  if (!namespaces && xpath.find(':') == std::string_view::npos) return std::string(xpath);
  return Copier(xpath, namespaces).run();
}

}  // namespace native
