// Reads values out of any document by any XPath: bytes and text up to the first NUL are the XPath, the rest is the
// document. The same document as text must be taken or refused alike.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/codes.h"
#include "platform/ports/xml_owner.h"
#include "tests/support/bare_machine.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void read_all(ports::Xml& xml, ports::XmlNode* document, const std::wstring& xpath) {
  ports::NodeOwner node(xml);
  const ports::Result found = xml.select_single_node(document, xpath.c_str(), node.receive());
  require((found == ports::code::ok) == !node.empty());
  if (node.empty()) return;
  std::wstring text;
  std::int32_t kind = 0;
  ports::MapOwner map(xml);
  require(xml.text(node.get(), text) == ports::code::ok && xml.node_type(node.get(), kind) == ports::code::ok);
  const bool has_map = xml.attributes(node.get(), map.receive()) == ports::code::ok;
  require(has_map == (kind == ports::node_kind::element));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const support::BareMachine desk;
  ports::Xml& xml = desk.system.xml;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\0');
  if (end == std::string_view::npos) return 0;
  const std::wstring xpath = base::strings::to_wide(input.substr(0, end));
  const std::string_view bytes = input.substr(end + 1);

  ports::NodeOwner document(xml);
  require(xml.create_document(document.receive()) == ports::code::ok);
  const ports::Result loaded = xml.load_bytes(document.get(), bytes);
  read_all(xml, document.get(), xpath);
  read_all(xml, document.get(), L"//*[*]");
  read_all(xml, document.get(), L"/");

  ports::NodeOwner of_text(xml), parsed(xml);
  require(xml.create_document(of_text.receive()) == ports::code::ok);
  std::wstring reason;
  const ports::Result taken = xml.parse(bytes, parsed.receive(), reason);
  require((taken == ports::code::ok) == !parsed.empty() && (taken == ports::code::ok) == reason.empty());
  if (taken == ports::code::ok) {
    require(xml.load_text(of_text.get(), base::strings::to_wide(bytes)) == ports::code::ok);
    read_all(xml, of_text.get(), xpath);
  } else if (loaded == ports::code::ok) {
    require(base::strings::first_ill_formed(bytes).has_value() || bytes.find("encoding") != std::string_view::npos);
  }
  return 0;
}
