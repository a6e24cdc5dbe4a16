#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reference {

/// Writes an XML document, indented, an element a line.
class XmlWriter {
 public:
  using Attributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;

  XmlWriter();

  /// An opening tag. Attributes with an empty value are left out.
  void open(std::string_view name, Attributes attributes = {});
  /// The closing tag of what was opened last.
  void close();
  /// An element without content.
  void empty(std::string_view name, Attributes attributes = {});
  /// An element that holds `text` and nothing else.
  void text(std::string_view name, std::string_view text);
  void comment(std::string_view text);

  [[nodiscard]] std::string document() && { return std::move(out_); }

 private:
  void indent();
  void tag(std::string_view name, Attributes attributes, std::string_view end);

  std::string out_;
  std::vector<std::string> opened_;
};

}  // namespace reference
