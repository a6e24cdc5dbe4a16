#include "installer/desktop/commands/registry/deleteifeokeyscommand.h"

#include "installer/desktop/commands/registry/ifeo_list.h"
#include "platform/ports/codes.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace ky {
namespace {

using Lines = std::vector<std::wstring>;

constexpr wchar_t ifeo[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\";

TEST(IfeoExecutables, AListIsReadAsLinesAre) {
  const struct {
    const wchar_t* list;
    Lines names;
  } rows[] = {
      {L"", {}},
      {L"a", {L"a"}},
      {L"a;", {L"a"}},
      {L"a;b", {L"a", L"b"}},
      {L";", {L""}},
      {L"a;;b", {L"a", L"", L"b"}},
      {L";a", {L"", L"a"}},
      {L"a; b;;", {L"a", L" b", L""}},
  };
  for (const auto& row : rows) EXPECT_EQ(IfeoExecutables(row.list), row.names) << row.list;
}

/// One run over a machine where "one", "two" and "" have keys, with keys below.
struct Trial : CommandWorld {
  Trial() : CommandWorld(layout().state) {}
  static support::NamedWorld layout() {
    support::NamedWorld world;
    for (const wchar_t* name : {L"one", L"two", L"", L"kept"}) {
      world.key(std::wstring(L"HKEY_LOCAL_MACHINE\\") + ifeo + name + L".exe\\PerfOptions");
    }
    return world;
  }
  /// The names of the keys that are left.
  Lines left() {
    Lines names;
    const machine::State state = world.state();
    const auto found = machine::find_key(state.registry, state.registry.local_machine, machine::split_path(ifeo), true);
    for (const auto& [name, key] : state.registry.keys.at(found.key).subkeys) names.push_back(name);
    return names;
  }
};

TEST(DeleteIfeoKeys, EachKeyOfTheListGoesWholeAndAnAbsentOneIsAnUsualErrorLine) {
  Trial run;
  run.put("IfeoExecutables", L"one;gone;;TWO;");
  const auto command = run.run("DeleteIfeoKeys", {});
  EXPECT_EQ(run.log,
            (Lines{L"5 DeleteIfeoKeys: Begin execute.",
                   L"5 DeleteIfeoKeys error: Could not delete key " + std::wstring(ifeo) + L"gone.exe. Error 2.",
                   L"5 DeleteIfeoKeys: End execute."}));
  EXPECT_EQ(run.left(), Lines{L"kept.exe"});
  EXPECT_FALSE(command->executed);
  EXPECT_FALSE(command->GuardHeld());
  EXPECT_EQ(command->GetNextIndex(), 6);
  EXPECT_EQ(run.log.back(), L"[InstallCommand] Warning: GetNextIndex called before Execute\n");
}

TEST(DeleteIfeoKeys, AFailureIsToldUnlessNothingWasFoundAndTheListGoesOn) {
  const struct {
    ports::ErrorCode error;
    const wchar_t* told;  // null: passed over
  } rows[] = {{ports::code::access_denied, L"one.exe. Error 5."},
              {ports::code::key_has_children, L"one.exe. Error 1020."},
              {ports::code::not_found, nullptr}};
  for (const auto& row : rows) {
    Trial run;
    run.put("IfeoExecutables", L"one;two");
    run.faulty.fail(faults::Operation::registry_remove_tree, 1, false, row.error);
    run.run("DeleteIfeoKeys", {});
    Lines expected = {L"5 DeleteIfeoKeys: Begin execute.", L"5 DeleteIfeoKeys: End execute."};
    if (row.told != nullptr) {
      expected.insert(expected.begin() + 1,
                      std::wstring(L"5 DeleteIfeoKeys error: Could not delete key ") + ifeo + row.told);
    }
    EXPECT_EQ(run.log, expected);
    EXPECT_EQ(run.left(), (Lines{L".exe", L"kept.exe", L"one.exe"}));
  }
}

TEST(DeleteIfeoKeys, WithoutAListNothingIsDeleted) {
  Trial run;
  run.run("DeleteIfeoKeys", {});
  EXPECT_EQ(run.log, (Lines{L"5 DeleteIfeoKeys: Begin execute.",
                            L"5 DeleteIfeoKeys error: Could not get the executables to protect in IFEO.",
                            L"5 DeleteIfeoKeys: End execute."}));
  run.log.clear();
  run.put("IfeoExecutables", L"");
  run.run("DeleteIfeoKeys", {});
  EXPECT_EQ(run.log, (Lines{L"5 DeleteIfeoKeys: Begin execute.", L"5 DeleteIfeoKeys: End execute."}));
  EXPECT_EQ(run.left().size(), 4u);
}

}  // namespace
}  // namespace ky
