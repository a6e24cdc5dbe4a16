#include "platform/native/pugi_xml.h"

#include <algorithm>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

#include "installer/utils/base/strings/utf8.h"
#include "platform/native/node_text.h"
#include "platform/native/well_formed.h"
#include "platform/native/xml_encoding.h"
#include "platform/native/xpath_text.h"
#include "platform/ports/codes.h"

namespace native {

namespace {

/// A document and the count of what keeps it. One thread at a time for one document, so that the count is a plain one.
struct Document {
  std::uint32_t references = 0;
  pugi::xml_document xml;
  /// The text of a document that drops white space, see `text_of`.
  std::string source;
  bool namespaces = false;
  bool space_rules = false;
};

class DocumentOwner {
 public:
  explicit DocumentOwner(Document& document) : document_(&document) { ++document_->references; }
  DocumentOwner(const DocumentOwner& other) : DocumentOwner(*other.document_) {}
  DocumentOwner& operator=(const DocumentOwner&) = delete;
  ~DocumentOwner() {
    if (--document_->references == 0) delete document_;
  }
  [[nodiscard]] Document* get() const { return document_; }
  Document* operator->() const { return document_; }

 private:
  Document* document_;
};

}  // namespace

}  // namespace native

namespace ports {

/// A node of the tree, or an attribute (then `node` is its element).
struct XmlNode {
  std::uint32_t references = 1;
  native::DocumentOwner document;
  pugi::xml_node node;
  pugi::xml_attribute attribute;
};

}  // namespace ports

/// Documents stay as they were parsed, so the attributes are collected once: a command asks for a dozen names.
struct ky::AttributeMap {
  struct Named {
    const char* name;
    pugi::xml_attribute attribute;
  };
  std::uint32_t references = 1;
  native::DocumentOwner document;
  pugi::xml_node element;
  std::vector<Named> attributes;
};

namespace native {

namespace {

using ports::Result;
using ports::XmlNode;
namespace code = ports::code;

pugi::xml_node first_element_from(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return node;
}

Result hand_out(const XmlNode& from, pugi::xml_node node, XmlNode*& out) {
  out = node ? new XmlNode{1, from.document, node, {}} : nullptr;
  return node ? code::ok : code::nothing;
}

Result hand_out(const ky::AttributeMap& from, pugi::xml_attribute attribute, XmlNode*& out) {
  out = attribute ? new XmlNode{1, from.document, from.element, attribute} : nullptr;
  return attribute ? code::ok : code::nothing;
}

/// ASCII names are compared in place: names are looked up a dozen times for each command of a script.
bool same_name(const char* utf8, const wchar_t* wide) {
  for (; *utf8 != '\0'; ++utf8, ++wide) {
    const auto unit = static_cast<unsigned char>(*utf8);
    if (unit >= 0x80) return base::strings::to_wide(utf8) == wide;
    if (static_cast<wchar_t>(unit) != *wide) return false;
  }
  return *wide == L'\0';
}

std::wstring place_and_reason(std::string_view utf8, std::size_t offset, const char* what) {
  std::size_t line = 1;
  std::size_t column = 1;
  for (const char c : utf8.substr(0, offset)) {
    column = c == '\n' ? 1 : column + 1;
    line += c == '\n' ? 1 : 0;
  }
  return L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column) + L": " +
         base::strings::to_wide(what);
}

std::int32_t kind_of(const XmlNode& node) {
  if (node.attribute) return ports::node_kind::attribute;
  switch (node.node.type()) {
    case pugi::node_element:
      return ports::node_kind::element;
    case pugi::node_pcdata:
      return ports::node_kind::text;
    case pugi::node_cdata:
      return ports::node_kind::cdata;
    case pugi::node_comment:
      return ports::node_kind::comment;
    case pugi::node_pi:
    case pugi::node_declaration:
      return ports::node_kind::processing_instruction;
    default:
      return ports::node_kind::document;
  }
}

constexpr unsigned all_kinds = pugi::parse_default | pugi::parse_comments | pugi::parse_pi;

/// Texts beyond this size are looked at anew each time, so that no memory is held for long.
constexpr std::size_t most_remembered = 0x10000;

}  // namespace

Result PugiXml::parse(std::string_view utf8, XmlNode*& document, std::wstring& reason) {
  document = nullptr;
  if (!base::strings::is_utf8(utf8)) {
    reason = L"the text is not UTF-8";
    return code::nothing;
  }
  const DocumentOwner parsed(*new Document);
  const pugi::xml_parse_result result =
      parsed->xml.load_buffer(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result) {
    reason = place_and_reason(utf8, static_cast<std::size_t>(result.offset), result.description());
    return code::nothing;
  }
  if (const auto fault = examine_xml(utf8).fault) {
    reason = place_and_reason(utf8, fault->offset, fault->what);
    return code::nothing;
  }
  document = new XmlNode{1, parsed, parsed->xml, {}};
  return code::ok;
}

Result PugiXml::create_document(XmlNode*& document) {
  const DocumentOwner made(*new Document);
  document = new XmlNode{1, made, made->xml, {}};
  return code::ok;
}

XmlFindings PugiXml::examine(const std::string& utf8) {
  if (utf8.size() > most_remembered) return examine_xml(utf8);
  const ports::Lock lock(mutex_);
  if (utf8 == sound_) return findings_;
  XmlFindings findings = examine_xml(utf8);
  if (!findings.fault) {
    sound_ = utf8;
    findings_ = findings;
  }
  return findings;
}

Result PugiXml::load(XmlNode* node, std::string utf8) {
  Document& document = *node->document.get();
  document.source = std::move(utf8);
  const std::string& source = document.source;
  const bool taken = document.xml.load_buffer(source.data(), source.size(), all_kinds, pugi::encoding_utf8);
  const XmlFindings findings = taken ? examine(source) : XmlFindings();
  if (!taken || findings.fault) {
    document.xml.reset();
    return code::nothing;
  }
  document.namespaces = findings.namespaces;
  document.space_rules = findings.space_rules;
  if (findings.space_rules) {
    document.xml.load_buffer(source.data(), source.size(), all_kinds | pugi::parse_ws_pcdata, pugi::encoding_utf8);
    drop_white_space(document.xml, false);
  }
  return code::ok;
}

Result PugiXml::load_text(XmlNode* document, std::wstring_view text) {
  if (text.starts_with(L'\xFEFF')) text.remove_prefix(1);
  std::string utf8 = base::strings::to_utf8(text);
  // The conversion puts this character where a surrogate has no partner.
  const bool suspicious = utf8.find("\xEF\xBF\xBD") != std::string::npos;
  if (suspicious && !base::strings::is_utf16(text)) utf8.clear();
  return load(document, std::move(utf8));
}

Result PugiXml::load_bytes(XmlNode* document, std::string_view bytes) {
  std::string utf8 = document_to_utf8(bytes).value_or(std::string());
  if (!base::strings::is_utf8(utf8)) utf8.clear();
  return load(document, std::move(utf8));
}

Result PugiXml::select_single_node(XmlNode* from, const wchar_t* xpath, XmlNode*& out) {
  out = nullptr;
  const auto text = xpath_for_pugixml(base::strings::to_utf8(xpath), from->document->namespaces);
  if (!text) return code::fail;
  try {
    const pugi::xpath_query query(text->c_str());
    const pugi::xpath_node start =
        from->attribute ? pugi::xpath_node(from->attribute, from->node) : pugi::xpath_node(from->node);
    const pugi::xpath_node found = query.evaluate_node(start);
    if (!found) return code::nothing;
    out = new XmlNode{1, from->document, found.attribute() ? found.parent() : found.node(), found.attribute()};
    return code::ok;
  } catch (const pugi::xpath_exception&) {
    return code::fail;
  }
}

Result PugiXml::node_type(XmlNode* node, std::int32_t& out) {
  out = kind_of(*node);
  return code::ok;
}

Result PugiXml::root(XmlNode* document, XmlNode*& element) {
  return hand_out(*document, document->document->xml.document_element(), element);
}

Result PugiXml::first_element(XmlNode* parent, XmlNode*& element) {
  return hand_out(*parent, first_element_from(parent->node.first_child()), element);
}

Result PugiXml::next_element(XmlNode* element, XmlNode*& next) {
  return hand_out(*element, first_element_from(element->node.next_sibling()), next);
}

Result PugiXml::name(XmlNode* node, std::wstring& out) {
  base::strings::to_wide(node->attribute ? node->attribute.name() : node->node.name(), out);
  return code::ok;
}

Result PugiXml::text(XmlNode* node, std::wstring& out) {
  if (node->attribute) {
    base::strings::to_wide(node->attribute.value(), out);
  } else {
    base::strings::to_wide(text_of(node->node, node->document->source, node->document->space_rules), out);
  }
  return code::ok;
}

Result PugiXml::attributes(XmlNode* element, ky::AttributeMap*& out) {
  const bool has_map = !element->attribute && element->node.type() == pugi::node_element;
  out = nullptr;
  if (!has_map) return code::nothing;
  std::unique_ptr<ky::AttributeMap> map(new ky::AttributeMap{1, element->document, element->node, {}});
  constexpr std::size_t usual = 8;
  map->attributes.reserve(usual);
  for (pugi::xml_attribute each = element->node.first_attribute(); each; each = each.next_attribute()) {
    map->attributes.push_back({each.name(), each});
  }
  out = map.release();
  return code::ok;
}

Result PugiXml::length(ky::AttributeMap* map, std::int32_t& out) {
  out = static_cast<std::int32_t>(map->attributes.size());
  return code::ok;
}

Result PugiXml::item(ky::AttributeMap* map, std::int32_t position, XmlNode*& out) {
  const auto place = static_cast<std::size_t>(std::max(position, 0));
  return hand_out(*map, place < map->attributes.size() ? map->attributes[place].attribute : pugi::xml_attribute(), out);
}

Result PugiXml::named_item(ky::AttributeMap* map, const wchar_t* name, XmlNode*& out) {
  const auto found = std::find_if(map->attributes.begin(), map->attributes.end(),
                                  [name](const auto& each) { return same_name(each.name, name); });
  return hand_out(*map, found == map->attributes.end() ? pugi::xml_attribute() : found->attribute, out);
}

void PugiXml::add_reference(ky::AttributeMap* map) {
  ++map->references;
}

void PugiXml::release(ky::AttributeMap* map) {
  if (--map->references == 0) delete map;
}

void PugiXml::release(XmlNode* node) {
  if (--node->references == 0) delete node;
}

}  // namespace native
