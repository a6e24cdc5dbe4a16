#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/ky/script/plain_script.h"
#include "tools/ky/script/script_error.h"

namespace script {

/// True for the characters that an XML document may hold.
[[nodiscard]] bool is_xml_character(char32_t character);

/// True for the names that scripts use: ASCII letters, digits, "_", "-" and ".", the first a letter or "_".
[[nodiscard]] bool is_name(std::string_view text);

/// Reads the small part of XML that scripts are written in, strictly: tags, attributes, comments, the five named and
/// all numbered character references. It does not nest by itself, so that no input can exhaust the stack. Each
/// operation either takes what it names and moves behind it, or throws a `ScriptError` with the place.
class XmlCursor {
 public:
  /// Refuses what is not UTF-8 and characters that XML does not have. A byte order mark is passed over. `text` outlives
  /// the cursor.
  XmlCursor(std::string file, std::string_view text);

  [[nodiscard]] bool at_end() const { return offset_ == text_.size(); }
  [[nodiscard]] bool comes(std::string_view literal) const { return text_.substr(offset_).starts_with(literal); }
  /// True, and moved behind it, where `literal` comes next.
  [[nodiscard]] bool take(std::string_view literal);
  void expect(std::string_view literal);
  /// True where there was any.
  bool skip_space();
  /// White space and comments, which are added to `comments` where that is not null.
  void skip_between(std::vector<PlainComment>* comments = nullptr);
  /// A name, which may have a prefix with a colon.
  [[nodiscard]] std::string_view name();
  /// A value in its quotes, with references resolved and white space made blanks.
  [[nodiscard]] std::string value();

  /// Where the cursor stands.
  [[nodiscard]] Position here();
  [[noreturn]] void fail(std::string reason) { fail_at(here(), std::move(reason)); }
  [[noreturn]] void fail_at(Position at, std::string reason) const;

 private:
  [[nodiscard]] char next() const { return at_end() ? '\0' : text_[offset_]; }
  void check_characters();
  void reference(std::string& out);
  [[nodiscard]] char32_t numbered_reference(std::string_view body) const;

  std::string file_;
  std::string_view text_;
  std::size_t offset_ = 0;
  // The place of an offset that was passed already; places are asked for from front to back.
  std::size_t known_offset_ = 0;
  Position known_;
};

}  // namespace script
