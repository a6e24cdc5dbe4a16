#include "tools/ky/script/plain_script.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/support/refusal_of.h"

namespace {

std::string refusal_of(std::string_view text) {
  return support::refusal_of([text] { return script::read_plain_script("s.xml", text); });
}

std::string around(std::string_view commands) {
  return "<install version=\"1.0\">\n<commands>\n" + std::string(commands) + "\n</commands>\n</install>\n";
}

TEST(PlainScript, NamesValuesAndPlacesAreRead) {
  const script::PlainScript read = script::read_plain_script(
      "s.xml",
      "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>\r\n<!-- a - > b -->\r\n<install version=\"1.0\" "
      "xmlns:xsi=\"x\" xsi:noNamespaceSchemaLocation=\"y\"><commands>\r\n"
      "<!-- \xC3\xBC --><Nop/> <Jump a='\"&apos;' b = \"&#x41;&#66;&gt;&#x1F600;\tx\r\ny\"\r\n  c=''>\r\n</Jump >"
      "</commands></install><!-- end -->\n");
  ASSERT_EQ(read.elements.size(), 2U);
  EXPECT_EQ(read.elements[0].name, "Nop");
  EXPECT_EQ(read.elements[0].at, (script::Position{4, 11}));
  const script::PlainElement& jump = read.elements[1];
  EXPECT_EQ(jump.at, (script::Position{4, 18}));
  ASSERT_EQ(jump.attributes.size(), 3U);
  EXPECT_EQ(jump.find("a")->value, "\"'");
  EXPECT_EQ(jump.find("b")->value, "AB>\xF0\x9F\x98\x80 x y");
  EXPECT_EQ(jump.find("c")->value, "");
  EXPECT_EQ(jump.find("c")->at, (script::Position{6, 3}));
  EXPECT_EQ(jump.find("d"), nullptr);

  EXPECT_TRUE(script::read_plain_script("s.xml", "<install version=\"1.0\"><commands/></install>").elements.empty());
}

TEST(PlainScript, WhatIsNoScriptIsRefusedWithItsPlace) {
  const struct {
    std::string text;
    std::string_view refusal;
  } cases[] = {
      {"", "1:1: the script is empty"},
      {" \n", "2:1: the text ends where an element is missing"},
      {"hello", "1:1: only elements may stand here, no text"},
      {{"\xFF\xFE<\0i\0", 6}, "1:1: the text is not UTF-8"},
      {around("<Nop a=\"\xC3\xBC\"/>\n<Nop a=\"\xC3\xBC\xC3\"/>"), "4:10: the text is not UTF-8"},
      {around({"<Nop/>\0", 7}), "3:7: the text holds a NUL byte"},
      {around("<Nop a=\"\x01\"/>"), "3:9: the text holds a control character"},
      {"<?xml version=\"1.0\" encoding=\"utf-16\"?><install/>", "1:21: the document must be XML 1.0 in UTF-8"},
      {"<?xml version=\"1.0\"", "1:20: the text ends where \"?>\" is missing"},
      {"<!DOCTYPE install>", "1:1: a document type or a CDATA section has no place in a script"},
      {around("<?php ?>"), "3:1: a processing instruction has no place in a script"},
      {"<config version=\"1.0\"/>", "1:1: the root is <config> and must be <install>"},
      {"<install><commands/></install>", "1:1: <install> lacks the attribute \"version\""},
      {"<install version=\"2.0\"/>", "1:10: the version is \"2.0\" and must be \"1.0\""},
      {"<install version=\"1.0\" x=\"\"/>", "1:24: the attribute \"x\" has no place on <install>"},
      {"<install version=\"1.0\"/>", "1:1: <install> does not hold <commands>"},
      {"<install version=\"1.0\"></install>", "1:24: <install> does not hold <commands>"},
      {"<install version=\"1.0\"><Nop/></install>", "1:24: <install> holds <Nop> and must hold <commands>"},
      {"<install version=\"1.0\"><commands a=\"\"/></install>", "1:34: <commands> may have no attributes"},
      {"<install version=\"1.0\"><commands/><commands/></install>",
       "1:35: <install> may hold nothing but one <commands>"},
      {around("") + "<Nop/>", "6:1: nothing may follow </install>"},
      {around("text"), "3:1: only elements may stand here, no text"},
      {around("<Nop>text</Nop>"), "3:6: a command holds no text and no other element"},
      {around("<Nop><Nop/></Nop>"), "3:6: a command holds no text and no other element"},
      {around("<Nop><![CDATA[]]></Nop>"), "3:6: a command holds no text and no other element"},
      {around("<Nop></Nob>"), "3:6: </Nob> stands where </Nop> must"},
      {around("</install>"), "3:1: </install> stands where </commands> must"},
      {around("<Nop a=\"1\" b=\"2\" a=\"3\"/>"), "3:18: the attribute \"a\" stands twice"},
      {around("<Nop a=\"1\"b=\"2\"/>"), "3:11: expected a blank, \">\" or \"/>\""},
      {around("<Nop a=1/>"), "3:8: expected a value in quotes"},
      {around("<Nop a/>"), "3:7: expected \"=\""},
      {around("<Nop a=\"<\"/>"), "3:9: a value holds \"<\"; write \"&lt;\""},
      {around("<Nop a=\"x & y\"/>"), "3:11: \"&\" does not begin a reference; write \"&amp;\""},
      {around("<Nop a=\"&nbsp;\"/>"), "3:9: unknown reference \"&nbsp;\""},
      {around("<Nop a=\"&#0;\"/>"), "3:9: unknown reference \"&#0;\""},
      {around("<Nop a=\"&#xD800;\"/>"), "3:9: unknown reference \"&#xD800;\""},
      {around("<Nop a=\"&#x100000041;\"/>"), "3:9: unknown reference \"&#x100000041;\""},
      {around("<Nop\xC3\xBC/>"), "3:5: expected a blank, \">\" or \"/>\""},
      {around("< Nop/>"), "3:2: expected a name"},
      {around("<x:Nop/>"), "3:1: <x:Nop> has a prefix, and a command's name has none"},
      {around("<Nop xmlns=\"x\"/>"), "3:6: the attribute \"xmlns\" has no place on a command"},
      {around("<!-- a -- b -->"), "3:1: the comment holds \"--\""},
      {around("<!-- a "), "3:1: the comment does not end"},
      {"<install version=\"1.0\"><commands><Nop a=\"", "1:41: the value does not end"},
      {"<install version=\"1.0\"><commands><Nop", "1:38: the text ends where \">\" is missing"},
      {"<install version=\"1.0\"><commands><Nop>", "1:39: the text ends where </Nop> is missing"},
      {"<install version=\"1.0\"><commands></commands>", "1:45: the text ends where </install> is missing"},
  };
  for (const auto& [text, refusal] : cases) EXPECT_EQ(refusal_of(text), "s.xml:" + std::string(refusal)) << text;
}

TEST(PlainScript, DepthAndSizeAreBounded) {
  std::string deep;
  for (int i = 0; i < 1'000'000; ++i) deep += "<a>";
  EXPECT_EQ(refusal_of(around(deep)), "s.xml:3:4: a command holds no text and no other element");
  EXPECT_EQ(refusal_of(std::string(script::max_script_size + 1, ' ')),
            "s.xml:1:1: the script is larger than 16777216 bytes");
}

}  // namespace
