#include "host/script/script_loader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "tests/support/bare_machine.h"
#include "tests/support/script_text.h"

namespace {

class ScriptLoaderTest : public testing::Test, public support::BareMachine {
 protected:
  ScriptLoaderTest() { EXPECT_EQ(session.start(host::built_in_script_key()), ""); }

  std::string faults_of(const std::string& text) {
    std::string lines;
    for (const host::ScriptFault& fault : session.load(text)) lines += describe(fault) + '\n';
    return lines;
  }
  std::string faults_of(const std::string& name, const support::Attributes& attributes) {
    return faults_of(support::ScriptText(system.cipher).add(name, attributes).text());
  }

  host::TableFactories library{ky::library::factories()};
  host::Session session{system, library};
  support::ScriptText script{system.cipher};
};

TEST_F(ScriptLoaderTest, LoadsEveryCommandUnderItsIndex) {
  script.add("Nop").add("Jump", {{"condition", "A"}, {"target", "0x10"}, {"next", "0"}});
  script.add("SetVariable", {{"index", "16"}, {"var", "A"}, {"value", "1"}, {"errVar", "E"}});
  script.add("Nop", {{"index", "010"}, {"next", "16"}}).add("Nop", {{"next", "-1"}, {"index", "15"}});
  EXPECT_EQ(faults_of(script.text()), "");
  std::string loaded;
  for (const host::ProgramStep& step : session.program().steps()) {
    loaded += step.name + ' ' + std::to_string(step.index) + ',' + std::to_string(step.command->next) + ' ';
  }
  EXPECT_EQ(loaded, "Nop 0,-1 Jump 1,0 SetVariable 16,-1 Nop 8,16 Nop 15,-1 ");
  EXPECT_STREQ(session.program().steps()[2].command->errVar.get(), "E");
}

TEST_F(ScriptLoaderTest, ADocumentThatIsNoScriptIsRefused) {
  const struct {
    const char *text, *reason;
  } rows[] = {
      {"", "not well-formed"},
      {"<install><commands>", "not well-formed"},
      {"\xFF\xFE<\0i\0", "not well-formed"},
      {"<config/>", "root is not <install>"},
      {"<install/>", "does not hold <commands>"},
      {"<install><x/></install>", "does not hold <commands>"},
      {"<install><commands/><more/></install>", "more than <commands>"},
  };
  for (const auto& row : rows) EXPECT_NE(faults_of(row.text).find(row.reason), std::string::npos) << row.text;
  EXPECT_EQ(faults_of("<install><commands/></install>"), "") << "a script may be empty";
}

TEST_F(ScriptLoaderTest, AllFaultsAreNamedWithTheirPlace) {
  script.add("Nop").add("Unknown").add("Jump", {{"target", "0"}}).add("SetVariable", {{"var", "A"}});
  script.add_raw("<Nop/>").add_raw("<" + script.cipher("Nop") + " next=\"5\" errVar=\"_\"/>");
  EXPECT_EQ(faults_of(script.text()),
            "element 2 (Unknown): is not the name of a command\n"
            "element 3 (Jump): lacks the attribute \"condition\"\n"
            "element 4 (SetVariable): lacks both attributes \"value\" and \"strValue\"\n"
            "element 5 (Nop): is not in the ciphered form: it does not begin with \"_\"\n"
            "element 6 (Nop), attribute \"next\": is not in the ciphered form: it does not begin with \"_\"\n"
            "element 6 (Nop), attribute \"errVar\": is not in the ciphered form: nothing follows the \"_\"\n");
  EXPECT_TRUE(session.program().steps().empty()) << "a refused script cannot be run";
}

TEST_F(ScriptLoaderTest, WaysThatLeadNowhereAreNamed) {
  script.add("Nop", {{"next", "9"}}).add("Jump", {{"condition", "A"}, {"target", "7"}}).add("Nop", {{"index", "4"}});
  EXPECT_EQ(faults_of(script.text()),
            "element 1 (Nop), attribute \"next\": no command has index 9\n"
            "element 2 (Jump), attribute \"target\": no command has index 7\n"
            "element 2 (Jump): goes on to the index that follows it, and no command has index 2\n");
  EXPECT_EQ(faults_of("Nop", {{"index", "2147483647"}}), "element 1 (Nop), attribute \"index\": is out of range\n");
}

TEST_F(ScriptLoaderTest, AValueIsHeldToWhatADecrypterTakes) {
  const std::string longest(host::longest_plain_value, 'x');
  EXPECT_EQ(faults_of("Nop", {{"errVar", longest}}), "");
  EXPECT_NE(faults_of("Nop", {{"errVar", longest + 'x'}}).find("too long"), std::string::npos);
  EXPECT_EQ(faults_of("Nop", {{"errVar", "\xC3\xA9"}}), "");

  std::string text = script.cipher("value");
  ASSERT_EQ(text.size(), 25U);
  std::string garbled = text;
  garbled[23] = '*';
  std::string other_block = text;
  other_block[3] = other_block[3] == 'A' ? 'B' : 'A';
  const struct {
    std::string value, reason;
  } rows[] = {
      {text.substr(0, 24), "URL-safe base64"},
      {garbled, "URL-safe base64"},
      {"_AAA.AAAA", "URL-safe base64"},
      {"_AAAA", "whole cipher blocks"},
      {other_block, "does not decipher"},
      {script.cipher("a\xFF"), "does not decipher with the key to a text"},
      {script.cipher(std::string("a\0b", 3)), "does not decipher with the key to a text"},
  };
  for (const auto& row : rows) {
    const std::string element = "<" + script.cipher("Nop") + " x=\"" + row.value + "\"/>";
    const std::string faults = faults_of(support::ScriptText(system.cipher).add_raw(element).text());
    EXPECT_NE(faults.find(row.reason), std::string::npos) << row.value << ": " << faults;
  }
}

TEST_F(ScriptLoaderTest, AnElementWithContentIsRefused) {
  const std::string nop = script.cipher("Nop");
  script.add_raw("<" + nop + "><" + nop + "/></" + nop + ">");
  EXPECT_EQ(faults_of(script.text()), "element 1 (Nop): holds another element\n");
}

TEST_F(ScriptLoaderTest, ACommandsOwnRefusalToLoadIsAFault) {
  EXPECT_EQ(faults_of("SetVariable", {{"var", ""}, {"value", "1"}}),
            "element 1 (SetVariable): its load failed with code 87\n");
}

}  // namespace
