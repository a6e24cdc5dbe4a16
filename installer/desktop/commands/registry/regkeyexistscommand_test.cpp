#include "installer/desktop/commands/registry/regkeyexistscommand.h"

#include <iostream>

#include "platform/ports/codes.h"
#include "platform/ports/termination.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

using Attributes = CommandWorld::Attributes;
using Lines = std::vector<std::wstring>;

struct Trial : CommandWorld {
  explicit Trial(const support::NamedWorld& laid_out = layout()) : CommandWorld(laid_out.state) {}
  static support::NamedWorld layout() {
    support::NamedWorld world;
    world.key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavrine").key(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.kyx");
    world.key(std::wstring(L"HKEY_USERS\\") + support::NamedWorld::anna + L"\\Software\\Anna");
    return world;
  }
};

Attributes looking_for(const char* base, const char* subkey, const std::string& variable = "Found") {
  return {{"base", base}, {"subkey", subkey}, {"variable", variable}};
}

TEST(RegKeyExists, StoresOneForAKeyThatIsThereAndLeavesTheVariableOtherwise) {
  const struct {
    const char* base;
    const char* subkey;
    bool found;
  } rows[] = {
      {"HKEY_LOCAL_MACHINE", "SOFTWARE\\Tavrine", true},
      {"HKEY_LOCAL_MACHINE", "[Branch]tavrine", true},
      {"HKEY_LOCAL_MACHINE", "", true},
      {"HKEY_CLASSES_ROOT", ".kyx", true},
      {"HKEY_CURRENT_USER", "Software\\Anna", true},
      {"HKEY_USERS", ".DEFAULT", true},
      {"HKEY_USERS", "Software\\Anna", false},
      {"HKEY_LOCAL_MACHINE", "SOFTWARE\\Other", false},
      {"HKEY_LOCAL_MACHINE", "[None]Tavrine", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.subkey);
    Trial run;
    run.put("Branch", L"SOFTWARE\\");
    run.put("Found", 7);
    run.run("RegKeyExists", looking_for(row.base, row.subkey));
    EXPECT_EQ(run.get_int("Found"), row.found ? 1 : 7);
  }
}

TEST(RegKeyExists, TellsTheKeyAsItIsLookedForAndKeepsItSo) {
  Trial run;
  const auto command = run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE\\[Product]"));
  EXPECT_EQ(run.log, (Lines{L"5: RegKeyExists 'SOFTWARE\\[Product]' Begin.\n",
                            L"5: RegKeyExists Cannot open key 'SOFTWARE\\[Product]'.\n",
                            L"5: RegKeyExists End execute. Next command 6.\n"}));
  EXPECT_EQ(run.get_int("Found"), 0);
  for (const wchar_t* product : {L"Tavrine", L"Other"}) {
    run.put("Product", product);
    run.log.clear();
    EXPECT_EQ(command->Execute(0, 0), 0u);
    EXPECT_EQ(run.log, (Lines{L"5: RegKeyExists 'SOFTWARE\\Tavrine' Begin.\n",
                              L"5: RegKeyExists Opened key 'SOFTWARE\\Tavrine'.\n",
                              L"5: RegKeyExists End execute. Next command 6.\n"}));
  }
  EXPECT_EQ(run.get_int("Found"), 1);
  EXPECT_TRUE(command->executed);
  EXPECT_FALSE(command->GuardHeld());
}

TEST(RegKeyExists, A32BitProcessLooksWhereTheScriptFoundItsSystem) {
  for (const std::int32_t x64 : {0, 1, 7}) {
    support::NamedWorld world = Trial::layout();
    world.state.environment.wow64 = true;
    Trial run(world);
    run.put("x64", x64);
    run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE\\Tavrine"));
    EXPECT_EQ(run.get_int("Found"), x64 == 0 ? 0 : 1);
  }
}

TEST(RegKeyExists, AKeyThatMayNotBeReadCountsAsAbsent) {
  Trial run;
  run.faulty.fail(faults::Operation::registry_open, run.faulty.calls(faults::Operation::registry_open) + 1, false,
                  ports::code::access_denied);
  run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE\\Tavrine"));
  EXPECT_EQ(run.log.at(1), L"5: RegKeyExists Cannot open key 'SOFTWARE\\Tavrine'.\n");
  EXPECT_EQ(run.get_int("Found"), 0);
}

TEST(RegKeyExists, AVariableOf95CharactersPassesAndALongerOneStopsTheProcess) {
  Trial run;
  const std::string longest(95, 'v');
  run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE", longest));
  EXPECT_EQ(run.get_int(longest), 1);
  run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "Absent", longest + "v"));
  const auto loaded = run.load("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE", longest + "v"));
  machine::Options options;
  options.on_stop = [](const ports::StopReason& reason) {
    std::cerr << std::string(reason.text.begin(), reason.text.end());
  };
  EXPECT_DEATH(
      {
        machine::Machine telling(Trial::layout().state, std::move(options));
        const ports::System own = telling.system(*run.engines);
        ports::bind(own);
        static_cast<void>(loaded.command->Execute(0, 0));
      },
      "RegKeyExists: variable too long");
}

TEST(RegKeyExists, AVariableThatTheCodePageDoesNotHaveIsNotStored) {
  Trial run;
  run.faulty.fail(faults::Operation::text_to_narrow, run.faulty.calls(faults::Operation::text_to_narrow) + 1, true,
                  ports::code::invalid_parameter);
  run.run("RegKeyExists", looking_for("HKEY_LOCAL_MACHINE", "SOFTWARE"));
  EXPECT_EQ(run.log.at(1), L"5: RegKeyExists Opened key 'SOFTWARE'.\n");
  EXPECT_EQ(run.get_int("Found"), 0);
}

TEST(RegKeyExists, LoadsOnlyWholeAndWithARootInCapitals) {
  Trial run;
  const struct {
    Attributes attributes;
    std::uint32_t result;
  } rows[] = {
      {looking_for("HKEY_USERS", ""), 0},
      {looking_for("hkey_users", "a"), 1},
      {looking_for("HKEY_CURRENT_CONFIG", "a"), 1},
      {{{"subkey", "a"}, {"variable", "b"}}, 1},
      {{{"base", "HKEY_USERS"}, {"variable", "b"}}, 1},
      {{{"base", "HKEY_USERS"}, {"subkey", "a"}}, 1},
  };
  for (const auto& row : rows) EXPECT_EQ(run.load("RegKeyExists", row.attributes).result, row.result);
}

}  // namespace
}  // namespace ky
