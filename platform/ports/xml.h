#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ports/types.h"

namespace ky {
struct AttributeMap;  // see ky/install_command.h
}

namespace ports {

/// A node of an XML document: the document itself, an element or an attribute.
struct XmlNode;

/// XML documents with the results of MSXML: 0 for success, 1 and null where nothing is there, negative on failure. An
/// engine of the build: MSXML 6 or pugixml. Every node and map that is handed out carries one reference, which the
/// receiver gives back with `release`; a node keeps its document. One thread at a time for one document.
class Xml {
 public:
  virtual ~Xml() = default;

  /// IXMLDOMDocument::load from memory: UTF-8 with or without byte order mark. 1 where the text is not well-formed, and
  /// `reason` says why.
  [[nodiscard]] virtual Result parse(std::string_view utf8, XmlNode*& document, std::wstring& reason) = 0;

  /// IXMLDOMDocument::get_documentElement.
  [[nodiscard]] virtual Result root(XmlNode* document, XmlNode*& element) = 0;

  /// IXMLDOMNode::get_firstChild and get_nextSibling, passing over all that is no element.
  [[nodiscard]] virtual Result first_element(XmlNode* parent, XmlNode*& element) = 0;
  [[nodiscard]] virtual Result next_element(XmlNode* element, XmlNode*& next) = 0;

  /// IXMLDOMNode::get_nodeName, of an element or attribute.
  [[nodiscard]] virtual Result name(XmlNode* node, std::wstring& out) = 0;

  /// IXMLDOMNode::get_text. An attribute's text is its value as it stands.
  [[nodiscard]] virtual Result text(XmlNode* node, std::wstring& out) = 0;

  /// IXMLDOMNode::get_attributes.
  [[nodiscard]] virtual Result attributes(XmlNode* element, ky::AttributeMap*& out) = 0;

  /// IXMLDOMNamedNodeMap::get_length, get_item and getNamedItem.
  [[nodiscard]] virtual Result length(ky::AttributeMap* map, std::int32_t& out) = 0;
  [[nodiscard]] virtual Result item(ky::AttributeMap* map, std::int32_t position, XmlNode*& out) = 0;
  [[nodiscard]] virtual Result named_item(ky::AttributeMap* map, const wchar_t* name, XmlNode*& out) = 0;

  /// AddRef and Release.
  virtual void add_reference(ky::AttributeMap* map) = 0;
  virtual void release(ky::AttributeMap* map) = 0;
  virtual void release(XmlNode* node) = 0;
};

}  // namespace ports
