#include "tools/ky/check/checker.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "tests/support/files_in.h"
#include "tools/ky/check/rule_pages.h"
#include "tools/ky/check/value_rules.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/script_files.h"

namespace {

const std::string source = KY_SOURCE_FOLDER "/";

class Checker : public testing::Test {
 protected:
  /// One line a finding: place, rule and message.
  std::string found(const std::string& text) {
    std::string lines;
    for (const check::Finding& finding : check::check_text("s.xml", text, key_, desk_.engines())) {
      lines += std::to_string(finding.at.line) + ':' + std::to_string(finding.at.column) + ' ' +
               std::string(finding.rule) + ": " + finding.message + '\n';
    }
    return lines;
  }
  std::string found_in(const std::string& commands) {
    return found("<install version=\"1.0\"><commands>\n" + commands + "</commands></install>");
  }

  workbench::DeskEngines desk_;
  host::ScriptKey key_ = script::read_key_file(source + "keys/development/script.key");
};

/// The places that an example says it is reported at.
std::multiset<std::string> expected_places(const std::string& text) {
  std::multiset<std::string> places;
  const std::regex place("(\\d+:\\d+)");
  for (std::size_t at = text.find("expect:"); at != std::string::npos; at = text.find("expect:", at + 1)) {
    const std::string comment = text.substr(at, text.find("-->", at) - at);
    for (std::sregex_iterator each(comment.begin(), comment.end(), place), end; each != end; ++each) {
      places.insert(each->str());
    }
  }
  return places;
}

TEST_F(Checker, EachRuleFindsItsBadExampleAndNothingElseAndHasItsPage) {
  for (const check::Rule& rule : check::all_rules()) {
    const std::string folder = source + "tools/ky/check/examples/" + std::string(rule.name);
    const std::string bad = script::read_script_text(folder + "/bad.xml");
    const std::string good = script::read_script_text(folder + "/good.xml");
    std::multiset<std::string> places;
    for (const check::Finding& finding : check::check_text("bad.xml", bad, key_, desk_.engines())) {
      EXPECT_EQ(finding.rule, rule.name) << finding.message;
      places.insert(std::to_string(finding.at.line) + ':' + std::to_string(finding.at.column));
    }
    EXPECT_EQ(places, expected_places(bad)) << rule.name << '\n' << found(bad);
    EXPECT_FALSE(places.empty()) << rule.name;
    EXPECT_EQ(found(good), "") << rule.name;
    EXPECT_EQ(script::read_script_text(source + check::page_of(rule)), check::rule_page(rule, bad, good))
        << "bring it up to date with ./dev reference";
  }
  EXPECT_EQ(script::read_script_text(source + "docs/rules/README.md"), check::rule_index());
}

TEST_F(Checker, WhatTheCompilerRefusesIsWhatOffendsAgainstTheStructure) {
  const std::string text = script::read_script_text(source + "tools/ky/check/examples/lost-way/bad.xml");
  std::string refusal;
  try {
    (void)script::compile(script::read_plain_script("s.xml", text), script::TextCipher(desk_.engines().cipher(), key_));
  } catch (const script::ScriptError& error) {
    for (const script::Fault& fault : error.faults()) {
      refusal += std::to_string(fault.at.line) + ':' + std::to_string(fault.at.column) + ' ' + std::string(fault.rule) +
                 ": " + fault.reason + '\n';
    }
  }
  EXPECT_EQ(found(text), refusal);
}

TEST_F(Checker, AVariableIsDefinedWhereAnyWayPutsIt) {
  EXPECT_EQ(found_in("<PathExists path='C:\\a' variable='Is'/>\n<Jump condition='Is' target='#use'/>\n"
                     "<SetVariable var='A' strValue='a'/>\n<Nop id='use'/>\n<DeleteFile pathFile='[A]'/>\n"),
            "")
      << "on one of two ways";
  EXPECT_EQ(found_in("<SetVariable id='again' var='B' strValue='b' errVar='Put'/>\n"
                     "<DeleteFolder path='[C]' errVar='E'/>\n<Jump condition='E' target='#end'/>\n<SetVariable var='C' "
                     "strValue='c'/>\n"
                     "<SetVariable var='Put' strValue='x'/>\n<Nop next='#again'/>\n"),
            "")
      << "by a round before";
  EXPECT_EQ(found_in("<SetVariable var='A' strValue='[A]'/>\n<SetVariable var='A' strValue='[A][Missing]'/>\n"),
            "2:22 undefined-variable: \"strValue\": nothing on any way here puts [A]\n"
            "3:22 undefined-variable: \"strValue\": nothing on any way here puts [Missing]\n")
      << "a command reads before it writes";
  EXPECT_EQ(found_in("<Jump condition='T' strValue='x' target='#end'/>\n<SetVariable var='T' value='1'/>\n"
                     "<Jump condition='T' strValue='x' value='1' target='#end'/>\n<Jump condition='T' target='#end'/>\n"
                     "<Jump condition='T' value='U' expValue='1' target='#end'/>\n"
                     "<GetStringFromXml var='V' xpath='/a' file='C:\\a.xml'/>\n<GetStringFromXml var='V' xpath='/a'/>\n"
                     "<Jump condition='ReturnCode' target='#end'/>\n"),
            "2:7 unwritten-key: \"condition\": nothing on any way here puts String_T\n"
            "6:21 unwritten-key: \"value\": nothing on any way here puts int_U\n"
            "8:1 unwritten-key: <GetStringFromXml>: nothing on any way here puts String_InstallItemsXml\n");
}

TEST_F(Checker, LoopsAreFoundWithTheirWaysOut) {
  EXPECT_EQ(found_in("<Nop/>\n<Nop id='a' next='#b'/>\n<Nop id='c' next='#a'/>\n<Nop id='b' next='#c'/>\n"),
            "3:1 endless-loop: <Nop> begins a loop of 3 commands that no way leads out of\n");
  EXPECT_EQ(found_in("<Nop id='a' next='#a'/>\n"),
            "2:1 endless-loop: <Nop> begins a loop of 1 command that no way leads out of\n");
  EXPECT_EQ(found_in("<Jump condition='RTL' target='#b'/>\n<Nop id='a' next='#a'/>\n<Nop id='x'/>\n<Nop next='#x'/>\n"
                     "<Nop id='b'/>\n"),
            "3:1 endless-loop: <Nop> begins a loop of 1 command that no way leads out of\n"
            "4:1 unreachable: no run gets to <Nop>, nor to 1 command behind it\n")
      << "an inner loop that holds its commands is told once, and one that no run gets to not at all";
}

TEST_F(Checker, FaultsOfTheWaysHideWhatTheyWouldDistort) {
  EXPECT_EQ(found_in("<Nop next='#nowhere'/>\n<DeleteFile pathFile='[A]'/>\n"),
            "2:6 lost-way: no element has the id \"nowhere\"\n");
  EXPECT_EQ(found_in("<Put name='A'/>\n<DeleteFile pathFile='[A]'/>\n<Nop next='#end'/>\n<Nop/>\n"),
            "2:1 unknown-element: <Put> is not the name of a command\n5:1 unreachable: no run gets to <Nop>\n");
}

TEST_F(Checker, AnAllowanceCoversItsElementOrThoseUpToAnId) {
  const std::string offence = "<Nop execCondition='Unset'/>\n";
  EXPECT_EQ(found_in("<!-- check: allow unwritten-key -->\n<!-- why -->\n" + offence + offence),
            "5:6 unwritten-key: \"execCondition\": nothing on any way here puts int_Unset\n");
  EXPECT_EQ(found_in("<!-- check: allow undefined-variable unwritten-key: both of them -->\n"
                     "<DeleteFile pathFile='[A]' execCondition='Unset'/>\n"),
            "");
  EXPECT_EQ(found_in("<!-- check: allow unwritten-key until #b -->\n" + offence + "<Nop/>\n" + offence +
                     "<Nop id='b' execCondition='Unset'/>\n<!-- check: allow unwritten-key until #b -->\n" + offence),
            "6:13 unwritten-key: \"execCondition\": nothing on any way here puts int_Unset\n"
            "7:1 idle-allowance: no element behind it has the id \"b\"\n");
  EXPECT_EQ(found_in("<!-- check: permit -->\n<!-- check: allow unknown-element -->\n<Put/>\n"),
            "2:1 idle-allowance: \"\" is not a rule\n4:1 unknown-element: <Put> is not the name of a command\n");
}

TEST_F(Checker, FamiliesAreLookedAtUpToTheirEnd) {
  using Numbers = std::vector<std::int32_t>;
  EXPECT_EQ(check::first_unread(Numbers{1, 2, 3}, false, 3), 0);
  EXPECT_EQ(check::first_unread(Numbers{1, 3, 4}, false, 9), 3);
  EXPECT_EQ(check::first_unread(Numbers{2}, false, 9), 2);
  EXPECT_EQ(check::first_unread(Numbers{2, 4}, true, 4), 0);
  EXPECT_EQ(check::first_unread(Numbers{2, 4}, true, 3), 4);
  const std::string entry = " process2='a.exe' cmd2='' currentDir2='C:\\' ";
  EXPECT_EQ(
      found_in("<CloseProcesses id='a' maxTimeout='1' next='#end'" + entry + "/>\n"),
      "2:51 numbered-gap: \"process2\" is never looked at: the element has 5 attributes, which lets numbers go up to "
      "1\n2:68 numbered-gap: \"cmd2\" is never looked at: the element has 5 attributes, which lets numbers go up to "
      "1\n2:76 numbered-gap: \"currentDir2\" is never looked at: the element has 5 attributes, which lets numbers "
      "go up to 1\n")
      << "three attributes a number, and the id is none of them";
  EXPECT_EQ(found_in("<CloseProcesses maxTimeout='1' next='#end' errVar='A' execCondition='RTL'" + entry + "/>\n"), "");
}

TEST_F(Checker, AnEncipheredScriptIsCheckedAsItsDecompiledText) {
  const script::PlainScript plain =
      script::read_plain_script("s.xml",
                                "<install version=\"1.0\"><commands><Nop/><Nop execCondition=\"Unset\"/>"
                                "</commands></install>");
  EXPECT_EQ(found(script::compile(plain, script::TextCipher(desk_.engines().cipher(), key_))),
            "4:14 unwritten-key: \"execCondition\": nothing on any way here puts int_Unset\n");
}

TEST_F(Checker, TheScriptsOfTheRepositoryAreClean) {
  EXPECT_EQ(found(script::read_script_text(source + "resources/script.xml")), "");
  for (const std::string& sample : support::files_in(source + "samples/scripts", ".xml")) {
    EXPECT_EQ(found(script::read_script_text(sample)), "") << sample;
  }
}

}  // namespace
