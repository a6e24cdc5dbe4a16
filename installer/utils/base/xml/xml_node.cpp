#include "installer/utils/base/xml/xml_node.h"

#include <cstdint>

#include "installer/utils/base/stop.h"
#include "installer/utils/base/xml/xml_error.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace base::xml {

xml_node::xml_node() : node_(ports::system().xml) {}

xml_node::xml_node(ports::XmlNode* document, const wchar_t* xpath) : xml_node() {
  if (document == nullptr) stop_assertion(L"doc");
  if (xpath == nullptr) stop_assertion(L"xpath");
  ports::Xml& xml = ports::system().xml;
  if (const ports::Result status = xml.select_single_node(document, xpath, node_.receive());
      !ports::succeeded(status)) {
    raise(status, "selectSingleNode has failed");
  }
  std::int32_t kind = 0;
  const ports::Result status = node_.empty() ? ports::code::pointer : xml.node_type(node_.get(), kind);
  if (status != ports::code::ok) raise(status, "get_nodeType has failed");
  if (kind != ports::node_kind::element) raise(ports::code::fail, "node type mismatch");
}

}  // namespace base::xml
