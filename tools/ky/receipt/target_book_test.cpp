#include "tools/ky/receipt/target_book.h"

#include <gtest/gtest.h>

#include <map>

namespace receipt {
namespace {

using Texts = std::map<std::wstring, std::wstring, std::less<>>;

Variables variables(const Texts& texts, bool x64 = false) {
  return {[texts](std::wstring_view name) -> std::optional<std::wstring> {
            const auto found = texts.find(name);
            return found == texts.end() ? std::nullopt : std::optional<std::wstring>(found->second);
          },
          x64};
}

/// A book over these elements, with their positions as indexes.
TargetBook book_of(const std::string& elements) {
  const script::PlainScript script =
      script::read_plain_script("s", "<install version=\"1.0\"><commands>" + elements + "</commands></install>");
  std::vector<std::int32_t> indexes;
  for (std::size_t at = 0; at < script.elements.size(); ++at) indexes.push_back(static_cast<std::int32_t>(at));
  return {script, indexes};
}

std::vector<std::wstring> paths_of(const Named& named) {
  std::vector<std::wstring> paths;
  for (const Naming& naming : named.things) {
    std::wstring path = naming.target.path;
    if (naming.target.kind == host::TargetKind::registry_value) path.append(L" : ").append(naming.target.value);
    if (naming.target.view_64) path.append(L" (64)");
    paths.push_back(std::move(path));
  }
  return paths;
}

TEST(TargetBook, EveryKindIsNamedByItsAttributes) {
  const struct {
    const char* element;
    std::vector<std::wstring> paths;
    std::vector<std::wstring> reasons;
  } rows[] = {
      {R"(<DeleteFile pathFile="[P]a.exe"/>)", {L"C:\\S\\a.exe"}, {}},
      {R"(<DeleteFile pathFile="[Q]a.exe"/>)", {}, {L"[Q] is never set"}},
      {R"(<DeleteFile pathFile="[Loop]"/>)", {}, {L"it leads back to itself"}},
      {R"(<DeleteFolder path="[Empty]"/>)", {}, {L"it is empty"}},
      {R"(<DeleteFile pathFile="[P]*.tmp"/>)", {}, {L"no file or folder has such a name"}},
      {R"(<DeleteFile pathFile="\\?\C:\a"/>)", {L"\\\\?\\C:\\a"}, {}},
      {R"(<DeleteRegKey base="HKEY_USERS" subkey="*\A\"/>)", {L"HKEY_USERS\\*\\A (64)"}, {}},
      {R"(<DeleteRegKey base="HKLM" subkey="A"/>)", {}, {L"it is no root of the registry"}},
      {R"(<DeleteRegValue base="HKEY_CURRENT_USER" subkey="A" value="[P]"/>)",
       {L"HKEY_CURRENT_USER\\A : C:\\S\\ (64)"},
       {}},
      {R"(<RemoveScheduledTask name="Update"/>)", {L"Update"}, {}},
      {R"(<RemoveScheduledTask name=""/>)", {}, {}},
      {R"(<RemoveScheduledTask/>)", {}, {}},
      {R"(<CleanupINF driverName="a.inf"/>)", {L"a.inf"}, {}},
      {R"(<CloseProcess process="Ky" command=""/>)", {L"Ky"}, {}},
      // Numbers go up to a third of the attributes, and one without its folder names nothing.
      {R"(<CloseProcesses maxTimeout="1" process1="a.exe" cmd1="" currentDir1="[P]" process3="c.exe" currentDir3="C:\"
          process2="b.exe" cmd2="" currentDir2="C:\T"/>)",
       {L"C:\\S\\a.exe", L"C:\\T\\b.exe"},
       {}},
      {R"(<DeleteIfeoKeys/>)",
       {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\x.exe",
        L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\y.exe"},
       {}},
      {R"(<PathExists path="C:\a" variable="v"/>)", {}, {}},
  };
  const Texts texts = {{L"P", L"C:\\S\\"}, {L"Loop", L"[Loop]"}, {L"Empty", L""}, {L"IfeoExecutables", L"x;y;"}};
  for (const auto& row : rows) {
    const Named named = book_of(row.element).names(variables(texts, true));
    EXPECT_EQ(paths_of(named), row.paths) << row.element;
    std::vector<std::wstring> reasons;
    for (const NotNamed& missing : named.not_named) reasons.push_back(missing.what.reason);
    EXPECT_EQ(reasons, row.reasons) << row.element;
  }
}

TEST(TargetBook, EachRunNamesWhatItsVariablesSayThen) {
  TargetBook book = book_of(R"(
      <DeleteFolder path="[P]"/> <DeleteFile pathFile="[P]a"/> <DeleteFolder path="[Late]"/> <DeleteFolder path="[P]"/>)");
  const auto visit = [&book](std::int32_t index, const Texts& texts, bool run, std::uint32_t result) {
    book.before(index, variables(texts));
    book.after(index, run, result);
  };
  visit(0, {{L"P", L"C:\\1\\"}}, true, 5);
  visit(1, {{L"P", L"C:\\1\\"}}, true, 0);
  visit(2, {}, false, 0);
  visit(0, {{L"P", L"C:\\2\\"}}, true, 0);
  visit(1, {{L"P", L"C:\\2\\"}}, true, 0);  // deletes the first run's file again
  const Named named = book.names(variables({{L"P", L"c:/2"}, {L"Late", L"C:\\late"}}));
  EXPECT_EQ(paths_of(named), (std::vector<std::wstring>{L"C:\\1\\", L"C:\\2\\", L"C:\\1\\a", L"C:\\late"}));
  EXPECT_TRUE(named.not_named.empty());
  const std::vector<NamingCommand> by = {{0, "DeleteFolder", true, true, 0}, {3, "DeleteFolder", false, false, 0}};
  EXPECT_EQ(named.things[1].by, by) << "the command that never ran names it by the variables at the end";
  EXPECT_EQ(named.things[3].by, (std::vector<NamingCommand>{{2, "DeleteFolder", true, false, 0}}));
}

TEST(TargetBook, ACommandThatTheProcessStoppedInHasRun) {
  TargetBook book = book_of(R"(<DeleteFile pathFile="C:\a"/>)");
  book.before(0, variables({}));
  EXPECT_TRUE(book.names(variables({})).things.at(0).by.at(0).run);
}

}  // namespace
}  // namespace receipt
