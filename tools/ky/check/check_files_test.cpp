#include "tools/ky/check/check_files.h"

#include <gtest/gtest.h>
#include <picojson.h>

#include <sstream>

#include "host/script/script_key.h"
#include "tests/support/temporary_folder.h"

namespace {

class CheckFiles : public testing::Test {
 protected:
  CheckFiles() {
    write("clean.xml", "<Nop/>");
    write("warned.xml", "\n<Nop execCondition=\"Unset\"/>\n<Evaluate expression=\"1 2\" resultVar=\"R\"/>");
    write("faulty.xml", "<DeleteFile pathFile=\"[None]\"/>");
  }

  void write(const std::string& name, const std::string& commands) {
    folder_.write(name, "<install version=\"1.0\"><commands>" + commands + "</commands></install>");
  }

  int run(const std::vector<std::string>& names, bool json = false, bool rules = false) {
    workbench::ScriptCheckOptions options;
    for (const std::string& name : names) options.files.push_back(folder_ / name.c_str());
    options.json = json;
    options.rules = rules;
    std::ostringstream out;
    std::ostringstream err;
    const int code = check::check_files(options, host::built_in_script_key(), out, err);
    out_ = out.str();
    err_ = err.str();
    for (const std::string& name : names) {
      const std::string whole = folder_ / name.c_str();
      for (std::size_t at = out_.find(whole); at != std::string::npos; at = out_.find(whole)) {
        out_.replace(at, whole.size(), name);
      }
    }
    return code;
  }

  support::TemporaryFolder folder_;
  std::string out_;
  std::string err_;
};

TEST_F(CheckFiles, AnErrorOrAFileThatCannotBeReadGivesOneAndAWarningDoesNot) {
  EXPECT_EQ(run({"clean.xml"}), 0);
  EXPECT_EQ(out_, "");
  EXPECT_EQ(run({"warned.xml", "clean.xml"}), 0);
  EXPECT_EQ(out_,
            "warned.xml:2:6: warning: \"execCondition\": nothing on any way here puts int_Unset [unwritten-key]\n"
            "warned.xml:3:11: warning: \"expression\": \"2\" is never looked at [ignored-tail]\n");
  EXPECT_EQ(run({"faulty.xml", "clean.xml"}), 1);
  EXPECT_EQ(out_, "faulty.xml:1:46: error: \"pathFile\": nothing on any way here puts [None] [undefined-variable]\n");
  EXPECT_EQ(run({"absent.xml", "warned.xml"}), 1);
  EXPECT_EQ(err_, (folder_ / "absent.xml") + ": cannot be read: it does not exist\n");
  EXPECT_NE(out_.find("warned.xml:2:6"), std::string::npos);
}

TEST_F(CheckFiles, AFindingIsOneLineWhateverAValueHolds) {
  write("lines.xml", "<Nop execCondition=\"a&#10;b\"/>");
  EXPECT_EQ(run({"lines.xml"}), 0);
  EXPECT_EQ(out_,
            "lines.xml:1:39: warning: \"execCondition\": nothing on any way here puts int_a&#10;b [unwritten-key]\n");
}

TEST_F(CheckFiles, JsonIsOneDocument) {
  picojson::value document;
  EXPECT_EQ(run({"clean.xml", "faulty.xml"}, true), 1);
  ASSERT_EQ(picojson::parse(document, out_), "");
  const picojson::array& files = document.get("files").get<picojson::array>();
  EXPECT_EQ(files.at(0).get("findings").serialize(), "[]");
  EXPECT_EQ(files.at(1).get("file").to_str(), folder_ / "faulty.xml");
  EXPECT_EQ(files.at(1).get("findings").serialize(),
            R"([{"column":46,"line":1,"message":"\"pathFile\": nothing on any way here puts [None]",)"
            R"("rule":"undefined-variable","severity":"error"}])");
}

TEST_F(CheckFiles, RulesAreListedWithTheirPages) {
  EXPECT_EQ(run({}, false, true), 0);
  EXPECT_NE(out_.find("lost-way (error): A way leads to no command.\n    docs/rules/lost-way.md\n"), std::string::npos);
  picojson::value document;
  EXPECT_EQ(run({}, true, true), 0);
  ASSERT_EQ(picojson::parse(document, out_), "");
  EXPECT_EQ(document.get("rules").get(0).get("page").to_str(), "docs/rules/bad-choice.md");
}

}  // namespace
