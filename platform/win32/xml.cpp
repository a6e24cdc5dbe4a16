#include "platform/win32/xml.h"

#include <msxml2.h>

#include <algorithm>

#include "platform/ports/codes.h"
#include "platform/win32/com.h"
#include "platform/win32/native_api.h"

namespace win32 {

namespace {

IXMLDOMNode* native(ports::XmlNode* node) {
  return reinterpret_cast<IXMLDOMNode*>(node);
}

IXMLDOMNamedNodeMap* native(ky::AttributeMap* map) {
  return reinterpret_cast<IXMLDOMNamedNodeMap*>(map);
}

ports::XmlNode* ported(IXMLDOMNode* node) {
  return reinterpret_cast<ports::XmlNode*>(node);
}

/// Owns a byte array in a VARIANT, the form in which a document is loaded from memory.
class ByteArray {
 public:
  explicit ByteArray(std::string_view bytes) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    if (array == nullptr) return;
    variant_.vt = VT_ARRAY | VT_UI1;
    variant_.parray = array;
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(array->pvData));
  }
  ~ByteArray() { VariantClear(&variant_); }
  ByteArray(const ByteArray&) = delete;
  ByteArray& operator=(const ByteArray&) = delete;

  [[nodiscard]] const VARIANT& variant() const { return variant_; }

 private:
  VARIANT variant_{};
};

HRESULT make_document(VARIANT_BOOL keep_white_space, ComOwner<IXMLDOMDocument>& out) {
  HRESULT result =
      CoCreateInstance(dom_document_60, nullptr, CLSCTX_INPROC_SERVER, iid_dom_document, out.receive_any());
  if (FAILED(result)) return result;
  result = out->put_async(VARIANT_FALSE);
  if (FAILED(result)) return result;
  // Otherwise texts, attributes' too, lose the white space at their ends.
  result = out->put_preserveWhiteSpace(keep_white_space);
  if (FAILED(result)) return result;
  result = out->put_validateOnParse(VARIANT_FALSE);
  if (FAILED(result)) return result;
  return out->put_resolveExternals(VARIANT_FALSE);
}

HRESULT load(IXMLDOMDocument& document, std::string_view bytes) {
  const ByteArray array(bytes);
  if (array.variant().vt == VT_EMPTY) return ports::code::no_memory;
  VARIANT_BOOL loaded = VARIANT_FALSE;
  const HRESULT result = document.load(array.variant(), &loaded);
  return result == S_OK && loaded == VARIANT_FALSE ? S_FALSE : result;
}

std::wstring reason_of(IXMLDOMDocument& document) {
  ComOwner<IXMLDOMParseError> error;
  Bstr reason;
  if (FAILED(document.get_parseError(error.receive())) || !error || FAILED(error->get_reason(reason.receive()))) {
    return L"not well-formed";
  }
  LONG line = 0, column = 0;
  static_cast<void>(error->get_line(&line));
  static_cast<void>(error->get_linepos(&column));
  std::wstring text = reason.text();
  while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.pop_back();
  return text + L" (line " + std::to_wstring(line) + L", column " + std::to_wstring(column) + L")";
}

HRESULT document_of(ports::XmlNode* node, ComOwner<IXMLDOMDocument>& out) {
  return native(node)->QueryInterface(iid_dom_document, out.receive_any());
}

/// `node` itself or the nearest sibling behind it that is an element.
ports::Result element_from(ComOwner<IXMLDOMNode> node, ports::XmlNode*& out) {
  while (node) {
    DOMNodeType type = NODE_INVALID;
    HRESULT result = node->get_nodeType(&type);
    if (FAILED(result)) return result;
    if (type == NODE_ELEMENT) {
      out = ported(node.detach());
      return ports::code::ok;
    }
    ComOwner<IXMLDOMNode> sibling;
    result = node->get_nextSibling(sibling.receive());
    if (FAILED(result)) return result;
    node = std::move(sibling);
  }
  out = nullptr;
  return ports::code::nothing;
}

}  // namespace

Xml::~Xml() {
  if (apartment_ != nullptr) CoDecrementMTAUsage(apartment_);
}

HRESULT Xml::enter_apartment() {
  const ports::Lock lock(mutex_);
  return apartment_ != nullptr ? S_OK : CoIncrementMTAUsage(&apartment_);
}

ports::Result Xml::parse(std::string_view utf8, ports::XmlNode*& document, std::wstring& reason) {
  document = nullptr;
  HRESULT result = enter_apartment();
  if (FAILED(result)) return result;
  ComOwner<IXMLDOMDocument> made;
  result = make_document(VARIANT_TRUE, made);
  if (FAILED(result)) return result;
  result = load(*made.get(), utf8);
  if (result == S_OK) document = ported(made.detach());
  if (result == S_FALSE) reason = reason_of(*made.get());
  return result;
}

ports::Result Xml::create_document(ports::XmlNode*& document) {
  document = nullptr;
  HRESULT result = enter_apartment();
  if (FAILED(result)) return result;
  ComOwner<IXMLDOMDocument> made;
  result = make_document(VARIANT_FALSE, made);
  if (SUCCEEDED(result)) document = ported(made.detach());
  return result;
}

ports::Result Xml::load_text(ports::XmlNode* document, std::wstring_view text) {
  ComOwner<IXMLDOMDocument> owner;
  HRESULT result = document_of(document, owner);
  if (FAILED(result)) return result;
  const Bstr copy(text);
  if (copy.get() == nullptr) return ports::code::no_memory;
  VARIANT_BOOL loaded = VARIANT_FALSE;
  result = owner->loadXML(copy.get(), &loaded);
  return result == S_OK && loaded == VARIANT_FALSE ? S_FALSE : result;
}

ports::Result Xml::load_bytes(ports::XmlNode* document, std::string_view bytes) {
  ComOwner<IXMLDOMDocument> owner;
  const HRESULT result = document_of(document, owner);
  return FAILED(result) ? result : load(*owner.get(), bytes);
}

ports::Result Xml::select_single_node(ports::XmlNode* from, const wchar_t* xpath, ports::XmlNode*& out) {
  out = nullptr;
  const Bstr text(xpath);
  if (text.get() == nullptr) return ports::code::no_memory;
  ComOwner<IXMLDOMNode> node;
  const HRESULT result = native(from)->selectSingleNode(text.get(), node.receive());
  out = ported(node.detach());
  return result;
}

ports::Result Xml::node_type(ports::XmlNode* node, std::int32_t& out) {
  DOMNodeType type = NODE_INVALID;
  const HRESULT result = native(node)->get_nodeType(&type);
  out = static_cast<std::int32_t>(type);
  return result;
}

ports::Result Xml::root(ports::XmlNode* document, ports::XmlNode*& element) {
  element = nullptr;
  ComOwner<IXMLDOMDocument> owner;
  HRESULT result = document_of(document, owner);
  if (FAILED(result)) return result;
  ComOwner<IXMLDOMElement> found;
  result = owner->get_documentElement(found.receive());
  if (result == S_OK) element = ported(found.detach());
  return result;
}

ports::Result Xml::first_element(ports::XmlNode* parent, ports::XmlNode*& element) {
  ComOwner<IXMLDOMNode> child;
  const HRESULT result = native(parent)->get_firstChild(child.receive());
  element = nullptr;
  return FAILED(result) ? result : element_from(std::move(child), element);
}

ports::Result Xml::next_element(ports::XmlNode* element, ports::XmlNode*& next) {
  ComOwner<IXMLDOMNode> sibling;
  const HRESULT result = native(element)->get_nextSibling(sibling.receive());
  next = nullptr;
  return FAILED(result) ? result : element_from(std::move(sibling), next);
}

ports::Result Xml::name(ports::XmlNode* node, std::wstring& out) {
  Bstr text;
  const HRESULT result = native(node)->get_nodeName(text.receive());
  if (result == S_OK) out = text.text();
  return result;
}

ports::Result Xml::text(ports::XmlNode* node, std::wstring& out) {
  Bstr text;
  const HRESULT result = native(node)->get_text(text.receive());
  if (result == S_OK) out = text.text();
  return result;
}

ports::Result Xml::attributes(ports::XmlNode* element, ky::AttributeMap*& out) {
  ComOwner<IXMLDOMNamedNodeMap> map;
  const HRESULT result = native(element)->get_attributes(map.receive());
  out = reinterpret_cast<ky::AttributeMap*>(map.detach());
  return result;
}

ports::Result Xml::length(ky::AttributeMap* map, std::int32_t& out) {
  LONG count = 0;
  const HRESULT result = native(map)->get_length(&count);
  out = count;
  return result;
}

ports::Result Xml::item(ky::AttributeMap* map, std::int32_t position, ports::XmlNode*& out) {
  ComOwner<IXMLDOMNode> node;
  const HRESULT result = native(map)->get_item(position, node.receive());
  out = ported(node.detach());
  return result;
}

ports::Result Xml::named_item(ky::AttributeMap* map, const wchar_t* name, ports::XmlNode*& out) {
  out = nullptr;
  const Bstr text(name);
  if (text.get() == nullptr) return ports::code::no_memory;
  ComOwner<IXMLDOMNode> node;
  const HRESULT result = native(map)->getNamedItem(text.get(), node.receive());
  out = ported(node.detach());
  return result;
}

void Xml::add_reference(ky::AttributeMap* map) {
  native(map)->AddRef();
}

void Xml::release(ky::AttributeMap* map) {
  native(map)->Release();
}

void Xml::release(ports::XmlNode* node) {
  native(node)->Release();
}

}  // namespace win32
