#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace native {

struct XmlFault {
  std::size_t offset = 0;  // in bytes
  const char* what = "";
};

/// What one look over a document's text finds.
struct XmlFindings {
  std::optional<XmlFault> fault;
  bool namespaces = false;   // some are declared
  bool space_rules = false;  // `xml:space` is used
};

/// Finds the first fault that pugixml lets pass and MSXML does not: a second root or text beside the root, an attribute
/// given twice, "<" in a value, an unknown reference, a character that XML does not have, "]]>" in a text, "--" in a
/// comment, a bad or misplaced declaration, an undeclared prefix, more than 256 levels, a document type. For UTF-8 that
/// pugixml took.
[[nodiscard]] XmlFindings examine_xml(std::string_view utf8);

}  // namespace native
