#include "installer/utils/base/xml/xml_reader.h"

#include "installer/utils/base/fs/read_file.h"
#include "installer/utils/base/stop.h"
#include "installer/utils/base/xml/xml_error.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace base::xml {

namespace {

using ports::Result;
namespace code = ports::code;

template <bool FromText>
Result load(ports::XmlNode* document, const wchar_t* source) {
  ports::Xml& xml = ports::system().xml;
  if constexpr (FromText) {
    return xml.load_text(document, source);
  } else {
    std::string bytes;
    return fs::read_file(source, largest_file, bytes) ? xml.load_bytes(document, bytes) : code::nothing;
  }
}

Result select(ports::XmlNode* document, const wchar_t* xpath, ports::NodeOwner& node) {
  if (xpath == nullptr) stop_assertion(L"xpath");
  return ports::system().xml.select_single_node(document, xpath, node.receive());
}

Result read_text(ports::XmlNode* node, std::wstring& out) {
  const Result status = ports::system().xml.text(node, out);
  if (status != code::ok) out.clear();
  return status;
}

}  // namespace

template <bool FromText>
xml_reader<FromText>::xml_reader(const wchar_t* source) {
  if (source == nullptr) stop_assertion(L"source");
  holder_ = std::make_unique<document_holder>();
  holder_->create();
  const Result status = load<FromText>(holder_->document(), source);
  if (status != code::ok) raise(status, "::load xml has failed!");
}

template <bool FromText>
std::wstring xml_reader<FromText>::get_value(const wchar_t* xpath, std::error_code& code) const {
  ports::NodeOwner node(ports::system().xml);
  std::wstring text;
  Result status = select(holder_->document(), xpath, node);
  if (status == code::ok && !node.empty()) status = read_text(node.get(), text);
  code = error_of(status);
  return text;
}

template <bool FromText>
std::wstring xml_reader<FromText>::get_value(const wchar_t* xpath) const {
  std::error_code code;
  std::wstring text = get_value(xpath, code);
  if (code) throw std::system_error(code, "get_value has failed!");
  return text;
}

template <bool FromText>
std::wstring xml_reader<FromText>::get_attribute(const wchar_t* xpath, const wchar_t* attribute_name,
                                                 std::error_code& code) const {
  if (attribute_name == nullptr) stop_assertion(L"attribute_name");
  ports::Xml& xml = ports::system().xml;
  ports::NodeOwner node(xml), attribute(xml);
  ports::MapOwner map(xml);
  std::wstring text;
  Result status = select(holder_->document(), xpath, node);
  if (status == code::ok && !node.empty()) status = xml.attributes(node.get(), map.receive());
  if (status == code::ok && !map.empty()) status = xml.named_item(map.get(), attribute_name, attribute.receive());
  if (status == code::ok && !attribute.empty()) status = read_text(attribute.get(), text);
  code = error_of(status);
  return text;
}

template <bool FromText>
std::wstring xml_reader<FromText>::get_attribute(const wchar_t* xpath, const wchar_t* attribute_name) const {
  std::error_code code;
  std::wstring text = get_attribute(xpath, attribute_name, code);
  if (code) throw std::system_error(code, "get_attribute has failed!");
  return text;
}

template <bool FromText>
xml_node xml_reader<FromText>::get_node(const wchar_t* xpath, std::error_code& code) const {
  try {
    code.clear();
    return get_node(xpath);
  } catch (const std::system_error& error) {
    code = error.code();
    return {};
  }
}

template <bool FromText>
xml_node xml_reader<FromText>::get_node(const wchar_t* xpath) const {
  return {holder_->document(), xpath};
}

template class xml_reader<false>;
template class xml_reader<true>;

}  // namespace base::xml
