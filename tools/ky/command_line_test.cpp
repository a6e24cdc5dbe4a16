#include "tools/ky/command_line.h"

#include <gtest/gtest.h>

namespace {

using workbench::parse_command_line;
using workbench::Usage;

template <class Wanted>
Wanted options_of(const std::vector<std::string>& arguments) {
  const auto parsed = parse_command_line(arguments);
  if (const Usage* usage = std::get_if<Usage>(&parsed); usage != nullptr) ADD_FAILURE() << usage->text;
  return std::get<Wanted>(std::get<workbench::Options>(parsed));
}

Usage usage_of(const std::vector<std::string>& arguments) {
  const auto parsed = parse_command_line(arguments);
  return std::holds_alternative<Usage>(parsed) ? std::get<Usage>(parsed) : Usage{-1, "work"};
}

TEST(CommandLine, EachSubcommandFillsItsOptions) {
  EXPECT_EQ(options_of<workbench::KeysNewOptions>({"keys", "new", "/d\xC3\xBC"}).folder, "/d\xC3\xBC");

  const auto compile = options_of<workbench::ScriptCompileOptions>({"script", "compile", "/in", "-o", "out"});
  EXPECT_EQ(compile.in, "/in");
  EXPECT_EQ(compile.out, "out");
  EXPECT_FALSE(compile.script_key.has_value());
  EXPECT_EQ(options_of<workbench::ScriptDecompileOptions>({"script", "decompile", "-o", "o", "--script-key=k", "in"})
                .script_key,
            "k");

  const auto rehearse = options_of<workbench::RehearseOptions>({"rehearse", "--machine", "m", "--max-steps", "5",
                                                                "--out", "o", "--receipt", "r", "--parent", "p /force",
                                                                "--", "/silent", "--", "--help", ""});
  EXPECT_EQ(rehearse.machine, "m");
  EXPECT_FALSE(rehearse.script.has_value());
  EXPECT_EQ(rehearse.out, "o");
  EXPECT_EQ(rehearse.receipt, "r");
  EXPECT_EQ(rehearse.max_steps, 5U);
  EXPECT_EQ(rehearse.parent, "p /force");
  EXPECT_EQ(rehearse.switches, (std::vector<std::string>{"/silent", "--", "--help", ""}));
  EXPECT_EQ(options_of<workbench::RehearseOptions>({"rehearse", "--machine", "m"}).max_steps, 1'000'000U);

  const auto run = options_of<workbench::RunOptions>({"run", "--script", "s", "--key", "p", "--", "/x"});
  EXPECT_EQ(run.script, "s");
  EXPECT_EQ(run.log_key, "p");
  EXPECT_EQ(run.switches, std::vector<std::string>{"/x"});

  const auto log = options_of<workbench::LogReadOptions>({"log", "read", "a", "b", "--key=k", "--by-thread", "--json"});
  EXPECT_EQ(log.files, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(log.key, "k");
  EXPECT_EQ(log.algorithm, "AES");
  EXPECT_TRUE(log.by_thread && log.json && !log.follow && !log.run && !log.html);
  EXPECT_EQ(options_of<workbench::LogReadOptions>({"log", "read", "a", "--html", "p"}).html, "p");
}

TEST(CommandLine, WrongUsageIsOneLineWithAHint) {
  const struct {
    std::vector<std::string> arguments;
    std::string text;
  } cases[] = {
      {{}, "ky: a subcommand is missing\nTry 'ky --help'.\n"},
      {{"explode"}, "ky: The following argument was not expected: explode\nTry 'ky --help'.\n"},
      {{"script"}, "ky script: a subcommand is missing\nTry 'ky script --help'.\n"},
      {{"script", "compile", "in"}, "ky script compile: --out is required\nTry 'ky script compile --help'.\n"},
      {{"keys", "new", ""}, "ky keys new: DIR: a name is missing\nTry 'ky keys new --help'.\n"},
      {{"keys", "new", "a", "b"},
       "ky keys new: The following argument was not expected: b\nTry 'ky keys new --help'.\n"},
      {{"rehearse"}, "ky rehearse: --machine is required\nTry 'ky rehearse --help'.\n"},
      {{"log", "read", "--follow", "a", "b"}, "ky log read: --follow: takes one FILE\nTry 'ky log read --help'.\n"},
      {{"log", "read", "a", "--html", "p", "--json"},
       "ky log read: --json excludes --html\nTry 'ky log read --help'.\n"},
      {{"rehearse", "--machine", "m", "/silent"},
       "ky rehearse: The following argument was not expected: /silent\nTry 'ky rehearse --help'.\n"},
  };
  for (const auto& [arguments, text] : cases) {
    const Usage usage = usage_of(arguments);
    EXPECT_EQ(usage.exit_code, 2);
    EXPECT_EQ(usage.text, text);
  }
  for (const char* steps : {"0", "-1", "many", "99999999999999999999"}) {
    EXPECT_EQ(usage_of({"rehearse", "--machine", "m", "--max-steps", steps}).exit_code, 2) << steps;
  }
  EXPECT_EQ(usage_of({"rehearse", "--machine", "m", "--machine", "n"}).exit_code, 2);
}

TEST(CommandLine, HelpAndVersionAreNoErrors) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"script", "compile", "--help"}, {"rehearse", "--help"}}) {
    const Usage usage = usage_of(arguments);
    EXPECT_EQ(usage.exit_code, 0);
    EXPECT_NE(usage.text.find("Usage: ky"), std::string::npos) << usage.text;
  }
  EXPECT_EQ(usage_of({"--version"}).text.substr(0, 3), "ky ");
}

}  // namespace
