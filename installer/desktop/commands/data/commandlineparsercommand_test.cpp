#include "installer/desktop/commands/data/commandlineparsercommand.h"

#include <random>
#include <sstream>

#include "installer/desktop/commands/data/commandlineswitches.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

std::wstring sanitized(const std::wstring& line, const std::wstring& known) {
  return SanitizeCommandLine(line, SplitKnownParameters(known));
}

TEST(CommandLines, AreCutDownToWhatIsKnown) {
  const struct {
    const wchar_t* known;
    const wchar_t* line;
    const wchar_t* result;
  } rows[] = {
      {L"/silent /pixel_url=", L"x /pixel_url=abc y /silent z", L"/silent /pixel_url=abc"},
      {L"/a= /b=", L"/b=\"1 2\" /a=3", L"/a=3 /b=\"1 2\""},
      {L"/a=", L"/a=\"1 2", L""},
      {L"/a=", L"x", L""},
      {L"/a= /b= /c=", L"/c=1 /b=\"2\" /a=\"3 4\"", L"/a=\"3 4\"/b=\"2\"/c=1"},
      {L"/a: /b:", L"/a:1 /b:2", L"/a:1 /b:2"},
      {L"/b /a /b", L"/b/a", L"/a /b"},
      {L"/a  /b", L"/b", L"/b"},
      {L"/a", L"/ab", L"/a"},
      {L"/A", L"/a", L""},
      {L"/a=", L"/a=1 /a=2", L"/a=1"},
      {L"/a= /b=", L"/b=/a=1", L"/a=1 /b=/a=1"},
      {L"/a=", L"/a= secret", L"/a="},
      {L"/a=", L"/a=\"\" secret", L"/a=\"\""},
      {L"/a=", L"/a=x\"y secret\"", L"/a=x\"y"},
      {L"/a=", L"/a=1\tsecret", L"/a=1\tsecret"},
      {L"/a=", L"/a=1\t ", L"/a=1"},
      {L"/a= /b=", L"/a=/b=1 /b=2", L"/a=/b=1 /b=1"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(sanitized(row.line, row.known), row.result) << testing::PrintToString(row.line);
}

/// A generated line: known parameters, with values that hold none of them, and words that are known under no name.
struct Line {
  std::wstring text;
  std::vector<std::wstring> strangers;
  bool quoted = false;
};

Line generated(std::mt19937& random, const std::vector<std::wstring>& names) {
  const auto below = [&](std::size_t end) { return random() % end; };
  Line line;
  for (std::size_t words = below(9); words > 0; --words) {
    std::wstring word;
    if (below(2) == 0) {
      word = L"secret" + std::to_wstring(line.strangers.size()) + (below(2) == 0 ? L"=/x" : L"");
      line.strangers.push_back(word);
    } else {
      word = names[below(names.size())];
      const bool valued = word.back() == L'=' || word.back() == L':';
      const bool quoted = valued && below(4) == 0;
      line.quoted |= quoted;
      if (quoted) word += L"\"v w\"";
      if (valued && !quoted) word += std::wstring(below(3), L'v');
    }
    line.text += word + std::wstring(words > 1 ? 1 + below(2) : below(2), L' ');
  }
  // Anywhere else an open quote would take all up to the next quote for its value.
  if (below(8) == 0) {
    line.text += L" /url=\"" + std::to_wstring(line.strangers.size());
    line.quoted = true;
  }
  return line;
}

TEST(CommandLines, AreCutDownOnceAndForAllAndKeepNoStranger) {
  const std::vector<std::wstring> names = {L"/silent", L"/force", L"/silently",  L"-f",
                                           L"/url=",   L"/id:",   L"/pixel_url="};
  std::mt19937 random(16);
  for (int round = 0; round < 5000; ++round) {
    std::wstring known;
    for (const std::wstring& name : names) {
      if (random() % 3 != 0) known += name + L' ';
    }
    const Line line = generated(random, names);
    const std::wstring once = sanitized(line.text, known);
    if (!line.quoted) {
      EXPECT_EQ(sanitized(once, known), once) << testing::PrintToString(line.text);
    }
    std::wistringstream words(once);
    for (std::wstring word; words >> word;) {
      const bool stranger = std::find(line.strangers.begin(), line.strangers.end(), word) != line.strangers.end();
      EXPECT_FALSE(stranger) << testing::PrintToString(line.text) << testing::PrintToString(word);
    }
  }
}

struct Trial : CommandWorld {
  Trial(const wchar_t* current, const std::optional<std::wstring>& parent_line, machine::Temper temper = {})
      : CommandWorld(state_with(parent_line, temper)) {
    put("CommandLine", current);
  }
  static machine::State state_with(const std::optional<std::wstring>& parent_line, const machine::Temper& temper) {
    support::NamedWorld world;
    if (!parent_line) return world.state;
    machine::RunningProgram parent;
    parent.image = L"C:\\Setup\\outer.exe";
    parent.command_line = *parent_line;
    parent.temper = temper;
    world.file(parent.image, "MZ");
    world.state.environment.parent = parent;
    return world.state;
  }
  void parse(const std::string& known = {}) {
    run("CommandLineParser", known.empty() ? Attributes{} : Attributes{{"knownParams", known}});
    EXPECT_EQ(world.handles().open_by_kind().count(machine::ObjectKind::process), 0u);
  }
  /// The variables that are 1, in the order in which they are put.
  std::string on() {
    std::string names;
    for (const char* name : {"Force", "Silent", "KeepSettings", "SkipKyagent", "RunKyagent", "OnlyProgress",
                             "RunUninstall", "RunUpdate", "RunRepair", "IsUpgrade", "AttachWindow"}) {
      if (get_int(name) != 0) names += std::string(names.empty() ? "" : " ") + name;
    }
    return names;
  }
  std::wstring pixel_url() { return get_text("PixelUrlParam") == nullptr ? L"(none)" : get_text("PixelUrlParam"); }
};

TEST(CommandLineParser, SwitchesOfEitherLineCount) {
  const struct {
    const wchar_t* current;
    std::optional<std::wstring> parent;
    const char* known;
    const char* on;
    const wchar_t* pixel_url;
    const wchar_t* current_after;
    const wchar_t* parent_after;
  } rows[] = {
      {L"setup /force", L"", "", "Force RunKyagent", L"(none)", L"setup /force", L""},
      {L"setup", L"outer /silent", "", "Silent RunKyagent", L"(none)", L"setup", L"outer /silent"},
      {L"/forced/Silent", std::nullopt, "", "Force RunKyagent", L"(none)", L"/forced/Silent", L""},
      {L"/skipKyagent /keepSettings /uninstall /update /repair /upgrade /attach", L"", "",
       "KeepSettings SkipKyagent RunUninstall RunUpdate RunRepair IsUpgrade AttachWindow", L"(none)",
       L"/skipKyagent /keepSettings /uninstall /update /repair /upgrade /attach", L""},
      {L"/pixel_url=one x", L"/pixel_url=two y", "", "RunKyagent", L"two", L"/pixel_url=one x", L"/pixel_url=two y"},
      {L"/pixel_url=one", L"", "", "RunKyagent", L"one", L"/pixel_url=one", L""},
      {L"/pixel_url= x", L"", "", "RunKyagent", L"", L"/pixel_url= x", L""},
      {L"setup /silent secret", L"outer /force secret /pixel_url=u", "/silent /pixel_url=", "Silent RunKyagent", L"u",
       L"/silent", L"/pixel_url=u"},
  };
  for (const auto& row : rows) {
    Trial run(row.current, row.parent);
    run.parse(row.known);
    EXPECT_EQ(run.on(), row.on);
    EXPECT_EQ(run.pixel_url(), row.pixel_url);
    EXPECT_EQ(std::wstring(run.get_text("CommandLine")), row.current_after);
    EXPECT_EQ(std::wstring(run.get_text("ParrentCommandLine")), row.parent_after);
  }
}

TEST(CommandLineParser, AParentThatCannotBeReadHasAnEmptyLine) {
  machine::Temper unreadable;
  unreadable.parameters_unreadable = true;
  machine::Temper refusing;
  refusing.refuses = ports::process_access::vm_read;
  for (const machine::Temper& temper : {unreadable, refusing}) {
    Trial run(L"setup", L"/silent", temper);
    run.parse();
    EXPECT_EQ(run.get_int("Silent"), 0);
    EXPECT_STREQ(run.get_text("ParrentCommandLine"), L"");
  }
}

TEST(CommandLineParser, TellsTheLogEachStep) {
  Trial run(L"/silent /pixel_url=a secret", L"/force x");
  run.parse("/silent /force /pixel_url=");
  EXPECT_EQ(run.lines(),
            L"5: CommandLineParser Begin execute.\n"
            L"5: CommandLineParser initial parent cmd line=/force x\n"
            L"5: known params='/silent /force /pixel_url='. current commandline and parent commandline should be "
            L"sanitized.\n"
            L"5: CommandLineParser initial cmdline=/silent /pixel_url=a secret\n"
            L"5: CommandLineParser sanitized cmdline=/silent /pixel_url=a\n"
            L"5: CommandLineParser sanitized parent cmdline=/force\n"
            L"5: CommandLineParser current cmd line=/silent /pixel_url=a\n"
            L"5: pixel_url params is present. value=a\n"
            L"5: pixel_url params is missing.\n"
            L"5: CommandLineParser Setting 'force'=1.\n"
            L"5: CommandLineParser Setting 'silent'=1.\n"
            L"5: CommandLineParser Setting 'keepSettings'=0.\n"
            L"5: CommandLineParser Setting 'skipKyagent'=0.\n"
            L"5: CommandLineParser Setting 'RunKyagent'=1.\n"
            L"5: CommandLineParser Setting 'onlyprogress'=0.\n"
            L"5: CommandLineParser Setting 'uninstall'=0.\n"
            L"5: CommandLineParser Setting 'update'=0.\n"
            L"5: CommandLineParser Setting 'repair'=0.\n"
            L"5: CommandLineParser Setting 'upgrade'=0.\n"
            L"5: CommandLineParser Setting 'attach'=0.\n"
            L"5: CommandLineParser End execute. Next command 6\n");
}

}  // namespace
}  // namespace ky
