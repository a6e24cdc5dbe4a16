#include "platform/ports/xml.h"

#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::XmlNode;
namespace code = ports::code;

class Xml : public Contract {
 protected:
  ports::Xml& xml() { return system().xml; }

  /// The root element; the test releases it.
  XmlNode* parse_root(std::string_view text) {
    XmlNode *document = nullptr, *element = nullptr;
    std::wstring reason;
    EXPECT_EQ(xml().parse(text, document, reason), code::ok) << text;
    if (document == nullptr) return nullptr;
    EXPECT_EQ(xml().root(document, element), code::ok);
    xml().release(document);  // A node keeps its document.
    return element;
  }

  std::wstring name(XmlNode* node) {
    std::wstring out;
    EXPECT_EQ(xml().name(node, out), code::ok);
    return out;
  }
  std::wstring text(XmlNode* node) {
    std::wstring out;
    EXPECT_EQ(xml().text(node, out), code::ok);
    return out;
  }
};

TEST_P(Xml, AnAttributesTextIsItsValueAsItStands) {
  struct Row {
    std::string_view written;
    std::wstring_view read;
  };
  const Row rows[] = {{"plain", L"plain"},
                      {"", L""},
                      {"  outer space  ", L"  outer space  "},
                      {"&lt;&amp;&quot;&apos;&gt;", L"<&\"'>"},
                      {"&#65;&#x20AC;", L"A\x20AC"},
                      {"\xC3\xA9", L"\x00E9"},
                      {"a\tb\nc", L"a b c"},
                      {"a&#10;b", L"a\nb"}};
  for (const Row& row : rows) {
    XmlNode* const element = parse_root("<e a=\"" + std::string(row.written) + "\"/>");
    ASSERT_NE(element, nullptr);
    ky::AttributeMap* map = nullptr;
    ASSERT_EQ(xml().attributes(element, map), code::ok);
    xml().release(element);
    XmlNode* attribute = nullptr;
    ASSERT_EQ(xml().named_item(map, L"a", attribute), code::ok);
    EXPECT_EQ(name(attribute), L"a");
    EXPECT_EQ(text(attribute), row.read) << row.written;
    xml().release(attribute);
    xml().release(map);
  }
}

TEST_P(Xml, AMapIsReadByNameAndByPosition) {
  XmlNode* const element = parse_root("<e first='1' Second='2'/>");
  ky::AttributeMap* map = nullptr;
  ASSERT_EQ(xml().attributes(element, map), code::ok);
  xml().release(element);
  xml().add_reference(map);
  xml().release(map);
  std::int32_t length = 0;
  EXPECT_EQ(xml().length(map, length), code::ok);
  ASSERT_EQ(length, 2);
  for (const auto& [position, value] : {std::pair{0, L"1"}, {1, L"2"}}) {
    XmlNode* item = nullptr;
    ASSERT_EQ(xml().item(map, position, item), code::ok);
    EXPECT_EQ(text(item), value);
    xml().release(item);
  }
  for (const wchar_t* missing : {L"third", L"second", L""}) {
    XmlNode* node = reinterpret_cast<XmlNode*>(map);
    EXPECT_EQ(xml().named_item(map, missing, node), code::nothing) << "case counts in a name";
    EXPECT_EQ(node, nullptr);
  }
  XmlNode* beyond = reinterpret_cast<XmlNode*>(map);
  EXPECT_EQ(xml().item(map, 2, beyond), code::nothing);
  EXPECT_EQ(beyond, nullptr);
  xml().release(map);
}

TEST_P(Xml, ElementsAreWalkedPastAllElse) {
  XmlNode* const root = parse_root(
      "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?><!-- c -->\n"
      "<root> text <!-- c --><one/><?go on?><![CDATA[x]]><two><inner/></two> tail </root>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(name(root), L"root");
  XmlNode *one = nullptr, *two = nullptr, *none = root;
  ASSERT_EQ(xml().first_element(root, one), code::ok);
  EXPECT_EQ(name(one), L"one");
  EXPECT_EQ(xml().first_element(one, none), code::nothing);
  EXPECT_EQ(none, nullptr);
  ASSERT_EQ(xml().next_element(one, two), code::ok);
  EXPECT_EQ(name(two), L"two");
  none = root;
  EXPECT_EQ(xml().next_element(two, none), code::nothing);
  EXPECT_EQ(none, nullptr);
  for (XmlNode* node : {root, one, two}) xml().release(node);
}

TEST_P(Xml, WhatIsNotWellFormedIsRefusedWithAReason) {
  for (const std::string_view text :
       {"", "   ", "no markup", "<a>", "<a></b>", "<a/><b/>", "<a/>x", "x<a/>", "<a x=1/>", "<a x='1' x='2'/>",
        "<a>&unknown;</a>", "<a x='&#0;'/>", "<a x='&'/>", "<a b='<'/>", "<a>\xFF</a>"}) {
    XmlNode* document = nullptr;
    std::wstring reason;
    EXPECT_EQ(xml().parse(text, document, reason), code::nothing) << text;
    EXPECT_EQ(document, nullptr) << text;
    EXPECT_FALSE(reason.empty()) << text;
    if (document != nullptr) xml().release(document);
  }
}

TEST_P(Xml, ADocumentTypeIsRefused) {
  XmlNode* document = nullptr;
  std::wstring reason;
  const ports::Result result = xml().parse("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", document, reason);
  expect_but_for_wine_engines("document types", result == code::nothing);
  if (document != nullptr) xml().release(document);
}

KY_CONTRACT(Xml);

}  // namespace

}  // namespace contract
