#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ports/types.h"

namespace ky {
struct AttributeMap;  // see ky/install_command.h
}

namespace ports {

/// A node of an XML document: the document itself, an element, an attribute, a text or a comment.
struct XmlNode;

/// The kinds of a node, with the numbers of the DOM.
namespace node_kind {
inline constexpr std::int32_t element = 1;
inline constexpr std::int32_t attribute = 2;
inline constexpr std::int32_t text = 3;
inline constexpr std::int32_t cdata = 4;
inline constexpr std::int32_t processing_instruction = 7;
inline constexpr std::int32_t comment = 8;
inline constexpr std::int32_t document = 9;
}  // namespace node_kind

/// XML documents with the results of MSXML: 0 for success, 1 and null where nothing is there, negative on failure. An
/// engine of the build: MSXML 6 or pugixml. Every node and map that is handed out carries one reference, which the
/// receiver gives back with `release`; a node keeps its document. One thread at a time for one document.
class Xml {
 public:
  virtual ~Xml() = default;

  /// IXMLDOMDocument::load from memory, keeping all white space: UTF-8 with or without byte order mark. 1 where the
  /// text is not well-formed, and `reason` says why.
  [[nodiscard]] virtual Result parse(std::string_view utf8, XmlNode*& document, std::wstring& reason) = 0;

  /// CoCreateInstance of the document: an empty one, to be loaded by one of the two operations that follow. It treats
  /// white space as is the default: texts of white space alone are dropped. `class_not_registered` where there is no
  /// engine.
  [[nodiscard]] virtual Result create_document(XmlNode*& document) = 0;

  /// IXMLDOMDocument::loadXML. 1 where the text is not well-formed, has more than 256 levels or a document type; the
  /// document is then empty. A byte order mark is passed over, and so is the encoding that the text declares.
  [[nodiscard]] virtual Result load_text(XmlNode* document, std::wstring_view text) = 0;

  /// The same from a file's bytes (IXMLDOMDocument::load): UTF-8 with or without byte order mark, UTF-16 with one, or
  /// the encoding that they declare, of which UTF-8, US-ASCII, ISO-8859-1 and windows-1252 are known everywhere. 1 also
  /// where they are not of that encoding or it is unknown.
  [[nodiscard]] virtual Result load_bytes(XmlNode* document, std::string_view bytes) = 0;

  /// IXMLDOMNode::selectSingleNode: the first node in document order; 1 and null where nothing matches. Negative
  /// (`fail`) for an expression that does not parse as XPath 1.0, gives no node set, is nested too deeply (always up to
  /// 100 levels, never beyond 1,024), or uses a prefix other than "xml": none is bound to a namespace.
  [[nodiscard]] virtual Result select_single_node(XmlNode* from, const wchar_t* xpath, XmlNode*& out) = 0;

  /// IXMLDOMNode::get_nodeType: one of `node_kind`.
  [[nodiscard]] virtual Result node_type(XmlNode* node, std::int32_t& out) = 0;

  /// IXMLDOMDocument::get_documentElement.
  [[nodiscard]] virtual Result root(XmlNode* document, XmlNode*& element) = 0;

  /// IXMLDOMNode::get_firstChild and get_nextSibling, passing over all that is no element.
  [[nodiscard]] virtual Result first_element(XmlNode* parent, XmlNode*& element) = 0;
  [[nodiscard]] virtual Result next_element(XmlNode* element, XmlNode*& next) = 0;

  /// IXMLDOMNode::get_nodeName, of an element or attribute.
  [[nodiscard]] virtual Result name(XmlNode* node, std::wstring& out) = 0;

  /// IXMLDOMNode::get_text. An attribute's text is its value as it stands. That of a node of `create_document` is the
  /// texts of all descendants but comments, trimmed at both ends: CDATA is not trimmed, one blank stands for dropped
  /// white space between two texts, and `xml:space` is heeded. An element's text in a document of `parse` is not for
  /// use.
  [[nodiscard]] virtual Result text(XmlNode* node, std::wstring& out) = 0;

  /// IXMLDOMNode::get_attributes: 1 and null for what is no element.
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
