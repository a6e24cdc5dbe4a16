#include "tools/ky/ky.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/desk/desk.h"
#include "tests/support/temporary_folder.h"

namespace {

class Ky : public testing::Test {
 protected:
  int run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = workbench::run_ky(arguments, out, err);
    out_ = out.str();
    err_ = err.str();
    return code;
  }

  support::TemporaryFolder folder_;
  std::string out_;
  std::string err_;
};

TEST_F(Ky, FreshKeysCompileAndDecompileAScript) {
  const std::string key = folder_ / "script.key";
  const std::string plain = "<install version=\"1.0\">\n    <commands>\n        <Nop/>\n    </commands>\n</install>\n";
  ASSERT_EQ(run({"keys", "new", folder_.path()}), 0) << err_;
  EXPECT_NE(out_.find(key + '\n'), std::string::npos);
  EXPECT_EQ(run({"script", "compile", folder_.write("plain.xml", plain), "-o", folder_ / "s.xml", "--script-key", key}),
            0)
      << err_;
  EXPECT_EQ(run({"script", "decompile", folder_ / "s.xml", "-o", folder_ / "back.xml", "--script-key", key}), 0)
      << err_;
  EXPECT_EQ(out_ + err_, "");
  EXPECT_EQ(support::text_of(folder_ / "back.xml"), plain);

  EXPECT_EQ(run({"script", "decompile", folder_ / "s.xml", "-o", folder_ / "never.xml"}), 1) << "that is another key";
  EXPECT_EQ(err_, (folder_ / "s.xml") + ":1:146: element 1: its name does not decipher with the key\n");
  EXPECT_FALSE(desk::exists(folder_ / "never.xml"));
}

TEST_F(Ky, BadInputIsOneLineAndNothingIsWritten) {
  folder_.write("bad.xml", "<install version=\"1.0\"><commands><Nap/></commands></install>");
  folder_.write("bad.key", "-----BEGIN KY SCRIPT KEY-----\n");
  const struct {
    std::vector<std::string> arguments;
    std::string refusal;
  } cases[] = {
      {{"script", "compile", folder_ / "bad.xml", "-o", folder_ / "out"},
       folder_ / "bad.xml" + ":1:34: <Nap> is not the name of a command\n"},
      {{"script", "compile", folder_ / "absent", "-o", folder_ / "out"},
       folder_ / "absent" + ": cannot be read: it does not exist\n"},
      {{"script", "compile", folder_ / "bad.xml", "-o", folder_ / "out", "--script-key", folder_ / "bad.key"},
       folder_ / "bad.key" + ": it does not end with \"-----END KY SCRIPT KEY-----\"\n"},
      {{"script", "decompile", folder_.path(), "-o", folder_ / "out"},
       folder_.path() + ": cannot be read: it is a folder\n"},
  };
  for (const auto& [arguments, refusal] : cases) {
    EXPECT_EQ(run(arguments), 1);
    EXPECT_EQ(err_, refusal);
    EXPECT_FALSE(desk::exists(folder_ / "out"));
  }
  EXPECT_EQ(run({"script", "compile"}), 2);
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_EQ(err_, "");
}

TEST_F(Ky, ARefusedRehearsalHasRunAndWrittenNothing) {
  const std::string machine = folder_.write("m.json", R"({"format": "ky-machine", "version": 1})");
  const std::string script =
      folder_.write("s.xml", R"(<install version="1.0"><commands><Jump target="7"/></commands></install>)");
  const std::string cut = folder_.write("cut.json", R"({"format": "ky-machine")");
  const std::string foreign = folder_.write("foreign.json", R"({"format": "ky-machine", "version": 9})");
  const struct {
    std::vector<std::string> arguments;
    std::string part;  // of the message, behind the file's name
  } cases[] = {
      {{"--machine", folder_ / "absent"}, "it does not exist"},
      {{"--machine", cut}, "the text is not JSON"},
      {{"--machine", foreign}, "version"},
      {{"--machine", machine, "--script", script}, "has index 7"},
      {{"--machine", machine, "--script", script}, "lacks the attribute \"condition\""},
      {{"--machine", machine, "--script-key", script}, "BEGIN KY SCRIPT KEY"},
  };
  for (auto [arguments, part] : cases) {
    arguments.insert(arguments.begin(), "rehearse");
    arguments.insert(arguments.end(), {"--out", folder_ / "out"});
    EXPECT_EQ(run(arguments), 1);
    EXPECT_NE(err_.find(part), std::string::npos) << err_;
    EXPECT_EQ(out_, "");
    EXPECT_FALSE(desk::exists(folder_ / "out")) << part;
  }
}

}  // namespace
