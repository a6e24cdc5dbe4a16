#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <set>
#include <sstream>

#include "tests/support/temporary_folder.h"
#include "tools/ky/ky.h"

namespace {

/// What a reader sees: texts, and tooltips without the character that keeps a backslash from its letter.
std::set<std::string> shown_by(const pugi::xml_document& picture) {
  std::set<std::string> shown;
  for (const pugi::xpath_node& found : picture.select_nodes("//*[local-name()='text']")) {
    shown.insert(found.node().text().get());
  }
  for (const pugi::xpath_node& found : picture.select_nodes("//@xlink:title")) {
    std::string tooltip = found.attribute().value();
    for (std::size_t at = 0; (at = tooltip.find("\xE2\x80\x8B", at)) != std::string::npos;) tooltip.erase(at, 3);
    shown.insert(tooltip);
  }
  return shown;
}

TEST(Picture, IsWellFormedAndShowsEveryValueAsItIs) {
  const struct {
    const char* value;  // in the script
    const char* text;   // in the picture; null: the same as in the tooltip
    const char* tooltip;
  } cases[] = {
      {"a &amp; b &lt;B&gt; &quot;q&quot; 'p'", nullptr, "a & b <B> \"q\" 'p'"},
      {"&amp;lt; &amp;foo; &amp;#65;", nullptr, "&lt; &foo; &#65;"},
      {"C:\\New\\Ever\\Tail\\\\x\\", nullptr, "C:\\New\\Ever\\Tail\\\\x\\"},
      {"{a|b} --&gt; %s $x #1; // /*", nullptr, "{a|b} --> %s $x #1; // /*"},
      {"one&#10;two&#9;three", "one two three", "one\ntwo three"},
      {"w\xC3\xB6lf \xE2\x82\xAC \xF0\x9F\x90\xBA", nullptr, "w\xC3\xB6lf \xE2\x82\xAC \xF0\x9F\x90\xBA"},
      {"\xEF\xBF\xBF", "\xEF\xBF\xBD", "\xEF\xBF\xBD"},
  };
  std::string script = "<install version=\"1.0\"><commands>";
  for (const auto& each : cases) script += "<SetVariable var=\"T\" strValue=\"" + std::string(each.value) + "\"/>";
  script += "<Jump condition=\"T\" strValue=\"&lt;\\N&amp;lt;&gt;\" target=\"#end\"/></commands></install>";

  support::TemporaryFolder folder;
  std::ostringstream out;
  std::ostringstream err;
  ASSERT_EQ(workbench::run_ky({"script", "graph", folder.write("s & 1.xml", script), "-o", folder / "s.svg"}, out, err),
            0)
      << err.str();
  pugi::xml_document picture;
  const pugi::xml_parse_result parsed =
      picture.load_file((folder / "s.svg").c_str(), pugi::parse_default | pugi::parse_ws_pcdata);
  ASSERT_TRUE(parsed) << parsed.description();
  const std::set<std::string> shown = shown_by(picture);
  int index = 0;
  for (const auto& [value, text, tooltip] : cases) {
    EXPECT_EQ(shown.count("T = " + std::string(text == nullptr ? tooltip : text)), 1U) << value;
    EXPECT_EQ(shown.count(std::to_string(index++) + " SetVariable\nvar = T\nstrValue = " + tooltip), 1U) << value;
  }
  EXPECT_EQ(shown.count("s & 1.xml"), 1U);
  EXPECT_EQ(shown.count("\xC2\xA0"
                        "T = \"<\\N&lt;>\""),
            1U);
}

}  // namespace
