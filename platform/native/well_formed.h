#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace native {

struct XmlFault {
  std::size_t offset = 0;  // in bytes
  const char* what = "";
};

/// The first fault that pugixml lets pass and MSXML does not: a second root or text beside the root, an attribute given
/// twice, "<" in a value, an unknown reference, a document type. For text that pugixml took; none where it is sound.
[[nodiscard]] std::optional<XmlFault> find_xml_fault(std::string_view utf8);

}  // namespace native
