#include "platform/ports/xml.h"

#include "installer/utils/base/strings/utf8.h"
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

  /// A document of a text or of bytes; null where it was not taken. The test releases it.
  XmlNode* load(std::wstring_view text) {
    return loaded([&](XmlNode* document) { return xml().load_text(document, text); });
  }
  XmlNode* load(std::string_view bytes) {
    return loaded([&](XmlNode* document) { return xml().load_bytes(document, bytes); });
  }
  template <class Load>
  XmlNode* loaded(Load load_into) {
    XmlNode* document = nullptr;
    EXPECT_EQ(xml().create_document(document), code::ok);
    const ports::Result result = load_into(document);
    if (result == code::ok) return document;
    EXPECT_EQ(result, code::nothing);
    EXPECT_EQ(selected(document, L"//*"), L"nothing") << "it has to be empty";
    xml().release(document);
    return nullptr;
  }

  /// The text of the first match, behind its kind; or the result of the selection.
  std::wstring selected(XmlNode* document, const wchar_t* xpath) {
    XmlNode* node = document;
    const ports::Result result = xml().select_single_node(document, xpath, node);
    EXPECT_EQ(node != nullptr, result == code::ok);
    if (node == nullptr) return result == code::fail ? L"fail" : result == code::nothing ? L"nothing" : L"?";
    std::int32_t kind = 0;
    EXPECT_EQ(xml().node_type(node, kind), code::ok);
    std::wstring told = std::to_wstring(kind) + L":" + text(node);
    xml().release(node);
    return told;
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
  for (const std::string_view text : {"",
                                      "   ",
                                      "no markup",
                                      "<a>",
                                      "<a></b>",
                                      "<a></A>",
                                      "<a><b></a></b>",
                                      "<a/><b/>",
                                      "<a/>x",
                                      "x<a/>",
                                      "<a x=1/>",
                                      "<a x='1' x='2'/>",
                                      "<a 1='x'/>",
                                      "<a x='1'y='2'/>",
                                      "<a / >",
                                      "< a/>",
                                      "<1/>",
                                      "<a>&unknown;</a>",
                                      "<a x='&#0;'/>",
                                      "<a>&#1;</a>",
                                      "<a>&#xFFFE;</a>",
                                      "<a>\x1</a>",
                                      "<a>\xEF\xBF\xBF</a>",
                                      "<a x='&'/>",
                                      "<a b='<'/>",
                                      "<a>\xFF</a>",
                                      "<a>\xED\xA0\xBD</a>",
                                      "<a>]]></a>",
                                      "<a><!-- b -- c --></a>",
                                      " <?xml version='1.0'?><a/>",
                                      "<a><?xml version='1.0'?></a>",
                                      "<?xml?><a/>",
                                      "<?xml version=1.0?><a/>",
                                      "<?xml version='2.0'?><a/>",
                                      "<a><?XML x?></a>",
                                      "<a/><?p<q?>",
                                      "<![CDATA[]]><a/>"}) {
    XmlNode* document = nullptr;
    std::wstring reason;
    EXPECT_EQ(xml().parse(text, document, reason), code::nothing) << text;
    EXPECT_EQ(document, nullptr) << text;
    EXPECT_FALSE(reason.empty()) << text;
    if (document != nullptr) xml().release(document);
    EXPECT_EQ(load(text), nullptr) << text;
    if (base::strings::is_utf8(text)) {
      EXPECT_EQ(load(std::wstring_view(base::strings::to_wide(text))), nullptr) << text;
    }
  }
  EXPECT_EQ(load(std::wstring_view(L"<a>\xD83D</a>")), nullptr) << "half a pair of surrogates";
}

TEST_P(Xml, APrefixHasToBeDeclared) {
  for (const wchar_t* const text :
       {L"<a xmlns:p='u' p:x='1'><p:b xml:lang='en'/></a>", L"<a><p:b xmlns:p='u'/><q:b xmlns:q='u'></q:b></a>"}) {
    XmlNode* const document = load(std::wstring_view(text));
    ASSERT_NE(document, nullptr) << text;
    xml().release(document);
  }
  for (const wchar_t* const text : {L"<p:a/>", L"<a p:x='1'/>", L"<a><b xmlns:p='u'/><p:b/></a>", L"<a:/>"}) {
    XmlNode* const document = load(std::wstring_view(text));
    expect_but_for_wine_engines("undeclared prefixes", document == nullptr);
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

TEST_P(Xml, TextIsJoinedAndTrimmed) {
  const struct {
    const wchar_t* document;
    const wchar_t* xpath;
    const wchar_t* text;
  } rows[] = {
      {L"<a>  x y \r\n\t z  </a>", L"/a", L"1:x y \n\t z"},
      {L"<a>  x  </a>", L"/a/text()", L"3:x"},
      {L"<a> \r\n </a>", L"/a", L"1:"},
      {L"<a> \r\n </a>", L"/a/text()", L"nothing"},
      {L"<a>&#32;x&#32;</a>", L"/a", L"1:x"},
      {L"<a>&#160;x\x2003</a>", L"/a", L"1:\xA0x\x2003"},
      {L"<a><b>x</b><b>y</b></a>", L"/a", L"1:xy"},
      {L"<a> <b>x </b><b> y</b> </a>", L"/a", L"1:x  y"},
      {L"<a><b>x</b> <b>y</b></a>", L"/a", L"1:x y"},
      {L"<a><b>x</b>\n  <c/>\n  <b>y</b>two</a>", L"/", L"9:x ytwo"},
      {L"<a><b>x<i> </i></b><b>y</b></a>", L"/a", L"1:x y"},
      {L"<a> p <!-- c --> q </a>", L"/a", L"1:p  q"},
      {L"<a> p <!-- c --> q </a>", L"/a/text()[2]", L"3:q"},
      {L"<a> p <!-- c --> q </a>", L"/a/comment()", L"8: c "},
      {L"<a>p<?pi q?>r</a>", L"/a", L"1:pr"},
      {L"<a>p<?pi q?>r</a>", L"/a/processing-instruction()", L"7:q"},
      {L"<a> <![CDATA[ <&x ]]> </a>", L"/a", L"1: <&x "},
      {L"<a> <![CDATA[ x ]]> y </a>", L"/a", L"1: x  y"},
      {L"<a>k<![CDATA[ m ]]></a>", L"/a/text()[2]", L"4: m "},
      {L"<a xml:space='preserve'>  x  <b> y </b> </a>", L"/a", L"1:  x   y  "},
      {L"<a xml:space='preserve'>  x  <b xml:space='default'> y </b> </a>", L"/a/b", L"1:y"},
      {L"<a xml:space='preserve'><b/> <b/></a>", L"/a[text()]", L"1: "},
      {L"<a>&#65;&lt;&amp;&gt;&quot;&apos;&#x20AC;&#x1F600;\xD83D\xDE00</a>", L"/a",
       L"1:A<&>\"'\x20AC\xD83D\xDE00\xD83D\xDE00"},
      {L"<a x='  v  ' w='a\tb\nc'/>", L"/a/@x", L"2:  v  "},
      {L"<a x='  v  ' w='a\tb\nc'/>", L"/a/@w", L"2:a b c"},
  };
  for (const auto& row : rows) {
    XmlNode* const document = load(std::wstring_view(row.document));
    ASSERT_NE(document, nullptr) << row.document;
    EXPECT_EQ(selected(document, row.xpath), row.text) << row.document << " " << row.xpath;
    xml().release(document);
  }
}

TEST_P(Xml, TheFirstMatchOfAnXPathIsSelected) {
  XmlNode* const document =
      load(std::wstring_view(L"<r><a i='1' n='x'>one</a><a i='2'>two</a><b/><c:d xmlns:c='urn:c'>pre</c:d>"
                             L"<e xmlns='urn:e'><f g='h'>def</f><n xmlns=''>none</n></e></r>"));
  ASSERT_NE(document, nullptr);
  const struct {
    const wchar_t* xpath;
    const wchar_t* told;
  } rows[] = {
      {L"/r/a[2]", L"1:two"},
      {L"/r/a[@i='2']", L"1:two"},
      {L"//a[last()]", L"1:two"},
      {L" r / a [ position( ) = 2 ] ", L"1:two"},
      {L"child::r/descendant::a", L"1:one"},
      {L"/r/b/preceding-sibling::a[1]", L"1:two"},
      {L"/r/a[contains(., 'w') and @i * 2 = 4]", L"1:two"},
      {L"/r/a[@i mod 2 = 0 or @i div 2 > 1]", L"1:two"},
      {L"/r/*[self::a]/@n", L"2:x"},
      {L"//@n/..", L"1:one"},
      {L"/r/b | /r/a/@i", L"2:1"},
      {L".", L"9:onetwopredefnone"},
      // Names are case-sensitive, and an empty position is no match.
      {L"/R", L"nothing"},
      {L"/r/z", L"nothing"},
      {L"/r/a/@q", L"nothing"},
      {L"/r/a[3]", L"nothing"},
      {L"..", L"nothing"},
      {L"id('x')", L"nothing"},
      // What is in a namespace has no name without a prefix, and no prefix is bound.
      {L"//e", L"nothing"},
      {L"//f", L"nothing"},
      {L"//attribute::g", L"2:h"},
      {L"//n", L"1:none"},
      {L"//@xmlns", L"nothing"},
      {L"//*[local-name()='f']", L"1:def"},
      {L"//*[name()='c:d']", L"1:pre"},
      {L"//*[namespace-uri()='urn:e']/@*", L"2:h"},
      {L"/r/a[@xml:lang]", L"nothing"},
      {L"//c:d", L"fail"},
      {L"//c:*", L"fail"},
      // No node set, or no XPath.
      {L"count(//a)", L"fail"},
      {L"'x'", L"fail"},
      {L"//a = 1", L"fail"},
      {L"", L"fail"},
      {L" ", L"fail"},
      {L"//", L"fail"},
      {L"/r/a[", L"fail"},
      {L"/r/a]", L"fail"},
      {L"a b", L"fail"},
      {L"/r/a['", L"fail"},
      {L"/r/a[$v]", L"fail"},
      {L"/r/a[nosuch()]", L"fail"},
      {L"/r/a[contains(.)]", L"fail"},
      {L"nosuch::a", L"fail"},
  };
  for (const auto& row : rows) EXPECT_EQ(selected(document, row.xpath), row.told) << row.xpath;
  for (const std::size_t deep : {std::size_t{100}, std::size_t{100'000}}) {
    const std::wstring nested = std::wstring(deep, L'(') + L"/r/b" + std::wstring(deep, L')');
    EXPECT_EQ(selected(document, nested.c_str()), deep == 100 ? L"1:" : L"fail");
  }

  XmlNode *comment = nullptr, *element = nullptr;
  ASSERT_EQ(xml().select_single_node(document, L"/r/a/text()", comment), code::ok);
  ky::AttributeMap* map = reinterpret_cast<ky::AttributeMap*>(document);
  EXPECT_EQ(xml().attributes(comment, map), code::nothing);
  EXPECT_EQ(map, nullptr);
  ASSERT_EQ(xml().select_single_node(document, L"/r", element), code::ok);
  EXPECT_EQ(selected(element, L"a[2]"), L"1:two") << "it starts at the node";
  for (XmlNode* node : {comment, element, document}) xml().release(node);
}

TEST_P(Xml, TextIsLoadedWhateverItDeclares) {
  for (const wchar_t* const text :
       {L"<a>\xE9</a>", L"\xFEFF<a>\xE9</a>", L"\n <a>\xE9</a>\n<!-- c --> ", L"<?xml version='1.0'?><a>\xE9</a>",
        L"\xFEFF<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\" ?><a>\xE9</a>",
        L"<?xml version='1.0' encoding='UTF-16'?>\n<a>\xE9</a>",
        L"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a >"}) {
    XmlNode* const document = load(std::wstring_view(text));
    ASSERT_NE(document, nullptr) << text;
    EXPECT_EQ(selected(document, L"/a"), L"1:\xE9") << text;
    xml().release(document);
  }
  // Levels up to 256 are taken; the bound itself is not the same everywhere.
  for (const std::size_t levels : {std::size_t{256}, std::size_t{300}, std::size_t{100'000}}) {
    std::wstring deep;
    for (std::size_t n = 0; n < levels; ++n) deep += L"<a>";
    for (std::size_t n = 0; n < levels; ++n) deep += L"</a>";
    XmlNode* const document = load(std::wstring_view(deep));
    EXPECT_EQ(document != nullptr, levels == 256) << levels;
    if (document != nullptr) xml().release(document);
  }
}

TEST_P(Xml, BytesAreReadInTheirOwnEncoding) {
  using namespace std::string_view_literals;
  const struct {
    std::string_view bytes;
    const wchar_t* told;  // null: not taken
  } rows[] = {
      {"<a>\xC3\xA9</a>"sv, L"1:\xE9"},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA9</a>"sv, L"1:\xE9"},
      {"\xFF\xFE<\0a\0>\0\xE9\0<\0/\0a\0>\0"sv, L"1:\xE9"},
      {"\xFE\xFF\0<\0a\0>\0\xE9\0<\0/\0a\0>"sv, L"1:\xE9"},
      {"<?xml version='1.0' encoding='us-ascii'?><a>x</a>"sv, L"1:x"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"sv, L"1:\xE9"},
      {"<?xml version=\"1.0\" encoding=\"Windows-1252\" ?><a>\xE9\x80</a>"sv, L"1:\xE9\x20AC"},
      {"<?xml version='1.0' encoding='nonsense'?><a>x</a>"sv, nullptr},
      {"<?xml version='1.0' encoding='utf-16'?><a>x</a>"sv, nullptr},
      {"<a>\xE9</a>"sv, nullptr},
      {"<a>x\0y</a>"sv, nullptr},
      {"\xFF\xFE<\0a\0"sv, nullptr},
      {""sv, nullptr},
  };
  for (const auto& row : rows) {
    XmlNode* const document = load(row.bytes);
    EXPECT_EQ(document == nullptr, row.told == nullptr) << row.bytes;
    if (document == nullptr) continue;
    EXPECT_EQ(selected(document, L"/a"), row.told) << row.bytes;
    xml().release(document);
  }
}

KY_CONTRACT(Xml);

}  // namespace

}  // namespace contract
