#pragma once

#include <string>

#include "platform/native/well_formed.h"
#include "platform/ports/mutex.h"
#include "platform/ports/xml.h"

namespace native {

/// XML documents by pugixml, with MSXML's results. Nodes and maps are counted, and each keeps its document.
class PugiXml final : public ports::Xml {
 public:
  ports::Result parse(std::string_view utf8, ports::XmlNode*& document, std::wstring& reason) override;
  ports::Result create_document(ports::XmlNode*& document) override;
  ports::Result load_text(ports::XmlNode* document, std::wstring_view text) override;
  ports::Result load_bytes(ports::XmlNode* document, std::string_view bytes) override;
  ports::Result select_single_node(ports::XmlNode* from, const wchar_t* xpath, ports::XmlNode*& out) override;
  ports::Result node_type(ports::XmlNode* node, std::int32_t& out) override;
  ports::Result root(ports::XmlNode* document, ports::XmlNode*& element) override;
  ports::Result first_element(ports::XmlNode* parent, ports::XmlNode*& element) override;
  ports::Result next_element(ports::XmlNode* element, ports::XmlNode*& next) override;
  ports::Result name(ports::XmlNode* node, std::wstring& out) override;
  ports::Result text(ports::XmlNode* node, std::wstring& out) override;
  ports::Result attributes(ports::XmlNode* element, ky::AttributeMap*& out) override;
  ports::Result length(ky::AttributeMap* map, std::int32_t& out) override;
  ports::Result item(ky::AttributeMap* map, std::int32_t position, ports::XmlNode*& out) override;
  ports::Result named_item(ky::AttributeMap* map, const wchar_t* name, ports::XmlNode*& out) override;
  void add_reference(ky::AttributeMap* map) override;
  void release(ky::AttributeMap* map) override;
  void release(ports::XmlNode* node) override;

 private:
  /// Fills a document that drops white space; it is empty where the text is not well-formed.
  ports::Result load(ports::XmlNode* node, std::string utf8);
  /// `examine_xml` of a text that pugixml took. Scripts read one document value by value, so the last sound one is
  /// remembered: to look at it again would take nearly as long as to parse it.
  XmlFindings examine(const std::string& utf8);

  ports::Mutex mutex_;
  std::string sound_ KY_GUARDED_BY(mutex_);
  XmlFindings findings_ KY_GUARDED_BY(mutex_);  // of the sound one
};

}  // namespace native
