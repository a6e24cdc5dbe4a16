#include "tools/ky/script/compiler.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/refusal_of.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/script/decompiler.h"
#include "tools/ky/script/resolved_script.h"
#include "tools/ky/script/script_files.h"

namespace {

using support::refusal_of;

std::string around(const std::string& commands) {
  return "<install version=\"1.0\"><commands>\n" + commands + "</commands></install>";
}

script::PlainScript read(const std::string& commands) {
  return script::read_plain_script("s.xml", around(commands));
}

/// The attributes named `attribute` of all elements, one a word.
std::string all_of(const script::PlainScript& script, std::string_view attribute) {
  std::string words;
  for (const script::PlainElement& element : script.elements) {
    if (const auto* found = element.find(attribute); found != nullptr) words += found->value + ' ';
  }
  return words;
}

TEST(Compiler, IdsBecomeTheIndexesThatTheLoaderCounts) {
  const script::PlainScript resolved = script::resolve(
      read("<Nop next=\"#b\"/><Nop index=\"010\" next='#a'/><Nop id=\"a\" next='#end'/><Nop index='2' next='#c'/>"
           "<Nop id=\"b\" next=\"0x8\"/><Nop next='-1'/><Jump id=\"c\" condition=\"x\" target=\"#a\" next=\"#end\"/>"
           "<Nop index='1'/>"));
  EXPECT_EQ(all_of(resolved, "next"), "3 9 10 5 0x8 -1 10 ");
  EXPECT_EQ(all_of(resolved, "target"), "9 ");
  EXPECT_EQ(all_of(resolved, "id"), "");
  EXPECT_EQ(all_of(resolved, "index"), "010 2 1 ");
}

TEST(Compiler, EveryFaultIsToldInTheOrderOfPlaces) {
  const auto resolve = [](const std::string& commands) {
    return refusal_of([&] { return script::resolve(read(commands)); });
  };
  EXPECT_EQ(resolve("<Nop next=\"#nowhere\"/>\n"
                    "<Explode/>\n"
                    "<Jump condition=\"x\" id=\"a\"/>\n"
                    "<SetVariable var=\"x\"/>\n"
                    "<Nop id=\"a\" errVar=\"" +
                    std::string(368, 'x') +
                    "\"/>\n"
                    "<Nop id=\"end\" next=\"5x\"/>\n"
                    "<Jump condition=\"x\" target=\"\"/>\n"
                    "<Nop errVar=\"" +
                    std::string(367, 'x') + "\"/>\n"),
            "s.xml:2:6: no element has the id \"nowhere\"\n"
            "s.xml:3:1: <Explode> is not the name of a command\n"
            "s.xml:4:1: <Jump> lacks the attribute \"target\"\n"
            "s.xml:5:1: <SetVariable> lacks both attributes \"value\" and \"strValue\"\n"
            "s.xml:6:6: the id \"a\" is taken by the element in line 4\n"
            "s.xml:6:13: \"errVar\" has 368 bytes, and a value may have 367\n"
            "s.xml:7:6: the id \"end\" stands for the end of the script\n"
            "s.xml:7:15: \"next\" is \"5x\" and must be a number or \"#\" and an id\n"
            "s.xml:8:21: \"target\" is \"\" and must be a number or \"#\" and an id");
  EXPECT_EQ(resolve("<Nop index=\"3\" next=\"3\"/>\n<Nop index=\"3\"/>\n<Nop index=\"-2\" next=\"6\"/>\n"
                    "<Jump index=\"9\" condition=\"\" target=\"8\"/>\n<Nop index='5'/>"),
            "s.xml:3:1: <Nop> goes on to the index that follows it, and no command has index 4\n"
            "s.xml:3:6: \"index\": element 1 has index 3 already\n"
            "s.xml:4:6: \"index\": is out of range\n"
            "s.xml:4:17: \"next\": no command has index 6\n"
            "s.xml:5:30: \"target\": no command has index 8\n"
            "s.xml:6:1: <Nop> goes on to the index that follows it, and no command has index 6");
  EXPECT_EQ(resolve("<Nop index=\"2147483648\"/>\n<Nop next=\"99\"/>"),
            "s.xml:2:6: \"index\" is \"2147483648\" and must be a number");
}

class Translation : public testing::Test {
 protected:
  [[nodiscard]] script::PlainScript enciphered(const std::string& bytes) const {
    return script::read_plain_script("s.bin", bytes);
  }

  workbench::DeskEngines desk_;
  script::TextCipher cipher_{desk_.engines().cipher(),
                             script::read_key_file(KY_SOURCE_FOLDER "/keys/development/script.key")};
};

TEST_F(Translation, TheBytesAreThoseOfTheGoldenFile) {
  const std::string golden = KY_SOURCE_FOLDER "/tests/golden/tiny-script";
  const script::PlainScript plain = script::read_script_file(golden + ".xml");
  EXPECT_EQ(script::compile(plain, cipher_), script::read_script_text(golden + ".bin"));
}

TEST_F(Translation, DecompilingGivesIdsWhereOthersLeadAndCompilesToTheSameBytes) {
  const std::string golden = script::read_script_text(KY_SOURCE_FOLDER "/tests/golden/tiny-script.bin");
  const std::string plain = script::decompile(enciphered(golden), cipher_);
  EXPECT_EQ(plain,
            "<install version=\"1.0\">\n"
            "    <commands>\n"
            "        <SetVariable var=\"Greeting\" strValue=\"a &lt; b &amp; &quot;c&quot;&#10;gr\xC3\xBCn\"/>\n"
            "        <Jump id=\"n1\" condition=\"Known\" target=\"#n17\" next=\"#end\"/>\n"
            "        <Nop index=\"0x10\" errVar=\"\"/>\n"
            "        <DeleteFile id=\"n17\" pathFile=\"C:\\old.txt\"/>\n"
            "        <Nop next=\"#n1\"/>\n"
            "    </commands>\n"
            "</install>\n");
  EXPECT_EQ(script::compile(script::read_plain_script("again", plain), cipher_), golden);

  const std::string edition =
      script::compile(script::read_script_file(KY_SOURCE_FOLDER "/resources/script.xml"), cipher_);
  const std::string back = script::decompile(enciphered(edition), cipher_);
  EXPECT_EQ(script::compile(script::read_plain_script("again", back), cipher_), edition);
}

TEST_F(Translation, EverythingThatDoesNotDecipherIsTold) {
  const auto name = [this](const char* plain) { return cipher_.encipher(plain); };
  const std::string text =
      around("<" + name("Nop") + " next=\"5\"/>\n<" + name("Nop") + " a=\"" + name("x") + "\" next=\"_AAAA\" id=\"" +
             name("x") + "\"/>\n<Nop/>\n<" + name("<>") + "/>\n<" + name("Nop") + " a=\"" + name("\x01") + "\"/>");
  EXPECT_EQ(
      refusal_of([&] { return script::decompile(enciphered(text), cipher_); }),
      "s.bin:2:28: element 1 (Nop): attribute \"next\" is not in the ciphered form: it does not begin with \"_\"\n"
      "s.bin:3:58: element 2 (Nop): attribute \"next\" is not in the ciphered form: it does not hold whole cipher "
      "blocks\n"
      "s.bin:3:71: element 2 (Nop): attribute \"id\" has no place in an enciphered script\n"
      "s.bin:4:1: element 3: its name is not in the ciphered form: it does not begin with \"_\"\n"
      "s.bin:5:1: element 4: its name deciphers to no name\n"
      "s.bin:6:28: element 5 (Nop): attribute \"a\" deciphers to a character that XML does not have");

  host::ScriptKey other{};
  const script::TextCipher wrong(desk_.engines().cipher(), other);
  EXPECT_EQ(refusal_of([&] {
              return script::decompile(enciphered(around("<" + name("Nop") + "/><" + name("Jump") + "/>")), wrong);
            }),
            "s.bin:2:1: element 1: its name does not decipher with the key");
  EXPECT_EQ(refusal_of([&] { return script::compile(enciphered(text), cipher_); }),
            "s.bin:2:1: the script is enciphered already");
}

}  // namespace
