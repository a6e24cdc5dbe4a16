#pragma once

#include "platform/ports/xml_owner.h"

namespace base::xml {

/// An element of a document, which it keeps; or none.
class xml_node {
 public:
  xml_node();

  /// The first match in `document`. Raises `std::system_error`: "selectSingleNode has failed" with the status of a bad
  /// XPath, "get_nodeType has failed" also where nothing matches, "node type mismatch" for what is no element. A null
  /// argument fails the assertion on its name and stops the process.
  xml_node(ports::XmlNode* document, const wchar_t* xpath);

  [[nodiscard]] bool empty() const { return node_.empty(); }
  [[nodiscard]] ports::XmlNode* get() const { return node_.get(); }

 private:
  ports::NodeOwner node_;
};

}  // namespace base::xml
