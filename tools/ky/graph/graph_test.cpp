#include <gtest/gtest.h>

#include "host/script/script_key.h"
#include "platform/desk/desk.h"
#include "tests/support/refusal_of.h"
#include "tests/support/temporary_folder.h"
#include "tools/ky/graph/dot_text.h"
#include "tools/ky/graph/graph_files.h"
#include "tools/ky/graph/layout.h"
#include "tools/ky/graph/markup.h"
#include "tools/ky/graph/words.h"
#include "tools/ky/script/script_files.h"

namespace {

graph::Flow flow_of(const std::string& commands) {
  return graph::flow_of(
      script::read_plain_script("s.xml", "<install version=\"1.0\"><commands>" + commands + "</commands></install>"));
}

/// Blocks as "begin-end", arrows as "command>block" with "!" for a taken one, "^" for one back and "~" for
/// one that is cut.
std::string layout_of(const std::string& commands) {
  const graph::Layout layout = graph::lay_out(flow_of(commands));
  std::string text;
  for (const graph::Block& block : layout.blocks) {
    text += (block.decides ? "<" : "[") + std::to_string(block.begin) + '-' + std::to_string(block.end - 1) +
            (block.decides ? ">" : "]");
  }
  for (const graph::Arrow& arrow : layout.arrows) {
    text += ' ' + std::to_string(arrow.command) + (arrow.taken ? "!" : "") + '>' +
            (arrow.to == graph::the_end ? "end"
                                        : std::to_string(arrow.to) + (arrow.back ? "^" : "") + (arrow.cut ? "~" : ""));
  }
  return text;
}

std::string nops(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "<Nop/>";
  return text;
}

TEST(Graph, CommandsThatFollowEachOtherAreOneBoxAndLongWaysAreSigns) {
  const struct {
    std::string commands;
    std::string layout;
  } cases[] = {
      {"", ""},
      {nops(3), "[0-2] 2>end"},
      {"<Nop next='0'/>", "[0-0] 0>0^"},
      {"<Nop index='5'/><Nop next='9'/><Nop index='9'/>", "[0-2] 2>end"},
      {"<Jump condition='A' target='#x'/><Nop/><Nop id='x'/><Nop/>", "<0-0>[1-1][2-3] 0!>2 0>1 1>2 3>end"},
      // A loop, left from its head; what is never reached stands alone.
      {"<Jump id='h' condition='A' target='#end'/><Nop/><Nop next='#h'/><Nop/>",
       "<0-0>[1-2][3-3] 0!>end 0>1 2>0^ 3>end"},
      // Jumps side by side, up to the one that others lead to.
      {"<Jump condition='A' target='#a'/><Jump condition='B' target='#b'/><Jump id='a' condition='C' target='#b'/>"
       "<Nop id='b'/>",
       "<0-1><2-2>[3-3] 0!>1 1!>2 1>1 2!>2 2>2 3>end"},
      // Far back.
      {"<Nop id='x'/>" + nops(90) + "<Jump condition='A' target='#x'/>", "[0-90]<91-91> 90>1 91!>0^~ 91>end"},
      // Far down for a jump, and not for a way on.
      {"<Jump condition='A' target='#x'/>" + nops(20) + "<Nop id='x'/>", "<0-0>[1-20][21-21] 0!>2~ 0>1 20>2 21>end"},
      {"<Jump condition='A' target='#y'/>" + nops(20) + "<Nop next='#x'/><Nop id='y'/><Nop id='x'/>",
       "<0-0>[1-21][22-22][23-23] 0!>2 0>1 21>3 22>3 23>end"},
  };
  for (const auto& [commands, layout] : cases) EXPECT_EQ(layout_of(commands), layout) << commands;
  EXPECT_FALSE(flow_of("<Nop next='#end'/><Nop/>").commands[1].reachable);
  EXPECT_THROW(static_cast<void>(flow_of("<Nop next='7'/>")), script::ScriptError);
}

TEST(Graph, ACommentBehindAnEmptyLineIsATitleAndAnyOtherARemark) {
  const graph::Flow flow = flow_of(
      "<!-- First. --><Nop/>\n<!-- a remark --><Nop/>\n\n<!-- check: allow bad-id --><Nop/>\n\n<!-- Second:\n\t two  "
      "lines. -->\n<!-- And more. -->\n<Nop\n"
      " next='4'/>\n<!-- another --><Nop/>");
  ASSERT_EQ(flow.sections.size(), 2U);
  EXPECT_EQ(flow.sections[0].title, "First.");
  EXPECT_EQ(flow.sections[1].title, "Second: two lines. And more.");
  EXPECT_EQ(flow.sections[1].begin, 3U);
}

TEST(Graph, ACommandIsToldInAFewWords) {
  const struct {
    const char* element;
    const char* subject;
    const char* condition;
  } cases[] = {
      {"<SetVariable var='A' value='7'/>", "A = 7", ""},
      {"<SetVariable execCondition='C' var='A' strValue='[B]\\'/>", "A = [B]\\", ""},
      {"<PathExists path='C:\\x' variable='There' errVar='E'/>", "There = C:\\x", ""},
      {"<SetProgress value='1' max='7'/>", "value = 1, max = 7", ""},
      {"<SetProgress value='1'/>", "value = 1", ""},
      {"<DeleteFolder recursive='1' path='C:\\x\\'/>", "C:\\x\\", ""},
      {"<DeleteRegValue base='HKEY_LOCAL_MACHINE' subkey='S\\T' value='V'/>", "HKLM\\S\\T : V", ""},
      {"<LoadFilesFromResources resourceID1='20005' outResource1='X' error='E'/>", "X = 20005", ""},
      {"<Nop/>", "", ""},
      {"<Jump condition='A' target='#end'/>", nullptr, "A \xE2\x89\xA0 0"},
      {"<Jump condition='A' value='3' target='#end'/>", nullptr, "A = 3"},
      {"<Jump condition='A' value='B' expValue='1' target='#end'/>", nullptr, "A = B"},
      {"<Jump condition='A' strValue='x' compareCase='0' target='#end'/>", nullptr, "A = \"x\" in any case"},
      {"<Jump condition='A' value='3' strValue='x' target='#end'/>", nullptr, "0 = 3"},
  };
  for (const auto& [text, subject, condition] : cases) {
    const graph::Flow flow = flow_of(text);
    if (subject != nullptr) {
      EXPECT_EQ(graph::subject_of(flow.element(0)), subject) << text;
    } else {
      EXPECT_EQ(graph::condition_of(flow.element(0)), condition) << text;
    }
  }
}

TEST(Graph, TextIsCutBetweenCharacters) {
  EXPECT_EQ(graph::shortened("abcdef", 6), "abcdef");
  EXPECT_EQ(graph::shortened("\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F"
                             "ef",
                             4),
            "\xC3\xA4\xC3\xB6\xE2\x80\xA6"
            "f");
  EXPECT_EQ(graph::beginning_of("One thing. Another.", 20), "One thing");
  EXPECT_EQ(graph::beginning_of("One thing.", 5), "One \xE2\x80\xA6");
}

class GraphFile : public testing::Test {
 protected:
  std::string refusal_of(const std::string& out, const std::string& program = "dot") {
    std::string refusal =
        support::refusal_of([&] { graph::graph_file(in_, host::built_in_script_key(), out, program); });
    EXPECT_FALSE(desk::exists(out));
    return refusal;
  }

  support::TemporaryFolder folder_;
  std::string in_ = KY_SOURCE_FOLDER "/samples/scripts/jumps.xml";
};

TEST_F(GraphFile, IsRefusedWithAReasonAndNothingWritten) {
  const std::string picture = folder_ / "x.svg";
  EXPECT_EQ(refusal_of(folder_ / "x.png"), (folder_ / "x.png") + ": must end in \".svg\" or \".dot\"");
  EXPECT_EQ(refusal_of(picture, "ky-no-dot"),
            picture +
                ": a picture takes Graphviz, and its program \"ky-no-dot\" is not on the PATH; install Graphviz, "
                "or name a file that ends in \".dot\"");
}

TEST_F(GraphFile, OfAnEncipheredScriptShowsTheSameFlow) {
  const std::string compiled = folder_ / "s.xml";
  script::compile_file(in_, host::built_in_script_key(), compiled);
  graph::graph_file(in_, host::built_in_script_key(), folder_ / "plain.dot");
  in_ = compiled;
  graph::graph_file(in_, host::built_in_script_key(), folder_ / "deciphered.dot");
  const std::string plain = support::text_of(folder_ / "plain.dot");
  const std::string deciphered = support::text_of(folder_ / "deciphered.dot");
  EXPECT_NE(plain.find(">#indexes<"), std::string::npos);
  EXPECT_NE(deciphered.find(">#n100<"), std::string::npos) << "ids are lost";
  for (const std::string& text : {plain, deciphered}) EXPECT_NE(text.find("Text = &quot;TAVRINE"), std::string::npos);
}

TEST_F(GraphFile, OfTheEditionIsTheOneInTheDocuments) {
  in_ = KY_SOURCE_FOLDER "/resources/script.xml";
  graph::graph_file(in_, host::built_in_script_key(), folder_ / "now.dot");
  EXPECT_TRUE(support::text_of(folder_ / "now.dot") == support::text_of(KY_SOURCE_FOLDER "/docs/edition-flow.dot"))
      << "./dev reference draws it anew";
}

}  // namespace
