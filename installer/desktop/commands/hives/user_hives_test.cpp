#include "installer/desktop/commands/hives/user_hives.h"

#include <algorithm>
#include <numeric>

#include "platform/machine/privileges.h"
#include "platform/ports/codes.h"
#include "tests/support/command_fixture.h"
#include "tests/support/user_profiles.h"

namespace ky {
namespace {

namespace code = ports::code;
using faults::Operation;
using support::NamedWorld;

struct Trial : CommandWorld {
  explicit Trial(const NamedWorld& layout) : CommandWorld(layout.state) {}

  host::CommandOwner run_on(const char* stem) {
    const auto privileges = world.state().enabled_privileges;
    const auto handles = world.handles().open_by_kind();
    const std::size_t keys = world.registry().open_keys();
    host::CommandOwner command = run(stem, {});
    EXPECT_TRUE(command->executed);
    EXPECT_FALSE(command->GuardHeld());
    EXPECT_EQ(world.state().enabled_privileges, privileges);
    EXPECT_EQ(world.handles().open_by_kind(), handles);
    EXPECT_EQ(world.registry().open_keys(), keys);
    return command;
  }
  host::CommandOwner mount() { return run_on("RegLoadAllUserHives"); }

  /// What is mounted by now: the names without the marker, and without what all sids begin with.
  std::wstring mounted() {
    std::wstring names;
    const machine::State state = world.state();
    for (const auto& [name, key] : state.registry.keys.at(state.registry.users).subkeys) {
      if (!IsMountName(name)) continue;
      names += std::wstring(names.empty() ? L"" : L" ") + name.substr(0, name.size() - hive_marker.size());
    }
    const std::wstring start = L"S-1-5-21-1-2-3-";
    for (std::size_t at = 0; (at = names.find(start, at)) != names.npos;) names.erase(at, start.size());
    return names;
  }
  std::wstring lines() const { return std::accumulate(log.begin(), log.end(), std::wstring()); }
  std::ptrdiff_t count(const std::wstring& text) const {
    return std::count_if(log.begin(), log.end(),
                         [&](const std::wstring& line) { return line.find(text) != line.npos; });
  }
};

NamedWorld three_users() {
  NamedWorld world;
  support::add_profiles(world, 3);
  return world;
}

TEST(RegLoadAllUserHives, EveryPersonWhoIsNotLoggedOnIsMounted) {
  NamedWorld world;
  for (const wchar_t* account : {L"S-1-5-18", L"S-1-5-19", L"S-1-5-20"}) support::add_profile(world, account, account);
  support::add_profile(world, support::sid_of(1), L"one");
  support::add_profile(world, support::sid_of(2) + L".bak", L"two");
  support::add_profile(world, support::sid_of(3) + L".BAK", L"three");
  support::add_profile(world, support::sid_of(4) + L".bak.1", L"four");
  support::list_profile(world, support::sid_of(5), L"C:\\Users\\absent");
  support::add_profile(world, support::sid_of(6), L"six");
  world.held(L"C:\\Users\\six\\NTUSER.DAT", 1, ports::file_share::all);
  support::add_profile(world, support::sid_of(7), L"seven");
  const auto list = machine::make_keys(world.state.registry, std::wstring(support::profile_list) + support::sid_of(7));
  world.state.registry.keys.at(list).values[L"ProfileImagePath"] = {
      ports::RegistryType::expandable, machine::text_bytes(L"%SystemDrive%\\Users\\seven")};
  world.key(std::wstring(support::profile_list) + support::sid_of(8));
  support::add_profile(world, NamedWorld::anna, L"anna");
  Trial run(world);
  run.mount();
  EXPECT_EQ(run.lines(),
            L"5: RegLoadAllUserHivesCommand Begin execute.\n"
            L"5: RegLoadAllUserHivesCommand Error: Could not get the size of a ProfileList child.\n"
            L"5: RegLoadAllUserHivesCommand: User hive 'S-1-5-21-1-2-3-1' loaded now.\n"
            L"5: RegLoadAllUserHivesCommand: User hive 'S-1-5-21-1-2-3-3.BAK' loaded now.\n"
            L"5: RegLoadAllUserHivesCommand Error: Could not load user hive 'S-1-5-21-1-2-3-5'.\n"
            L"5: RegLoadAllUserHivesCommand Error: Could not load user hive 'S-1-5-21-1-2-3-6'.\n"
            L"5: RegLoadAllUserHivesCommand: User hive 'S-1-5-21-1-2-3-7' loaded now.\n"
            L"5: RegLoadAllUserHivesCommand: User hive 'S-1-5-21-1004336348-1177238915-682003330-1001' already "
            L"loaded.\n"
            L"5: RegLoadAllUserHivesCommand End execute. Next command 6.\n");
  EXPECT_EQ(run.mounted(), L"1 3.BAK 7");
  ports::RegistryKey key = ports::RegistryKey::null;
  EXPECT_EQ(run.system.registry.open(ports::RegistryKey::users, L"S-1-5-21-1-2-3-7__ky_setup__\\Software\\Tavrine", 0,
                                     ports::registry_access::read, key),
            code::success);
  EXPECT_EQ(run.system.registry.close(key), code::success);
}

TEST(RegLoadAllUserHives, WhatFailsIsToldAndTheOthersAreMounted) {
  const struct {
    const char* kind;
    Operation operation;
    std::uint64_t call;
    ports::ErrorCode error;
    const wchar_t* line;
    const wchar_t* mounted;
  } rows[] = {
      {"no profile list", Operation::registry_open, 1, code::file_not_found, L"Could not open the ProfileList key.\n",
       L""},
      {"the size of the second path", Operation::registry_get_text, 3, code::file_not_found,
       L"Could not get the size of a ProfileList child.\n", L"1001 1003"},
      {"the second path", Operation::registry_get_text, 4, code::more_data,
       L"Could not get the value of a ProfileList child.\n", L"1001 1003"},
      {"the third name", Operation::registry_subkey_within, 3, code::access_denied,
       L"Could not completely enumerate all the children of ProfileList.\n", L"1001 1002"},
      {"the first privilege", Operation::tokens_open_own, 1, code::access_denied,
       L"Could not set the RESTORE_NAME privilege.\n", L""},
      {"the second privilege", Operation::tokens_adjust, 2, code::access_denied,
       L"Could not set the BACKUP_NAME privilege.\n", L""},
      {"the second hive", Operation::registry_load_hive, 2, code::bad_database,
       L"Could not load user hive 'S-1-5-21-1-2-3-1002'.\n", L"1001 1003"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    Trial run(three_users());
    const std::uint64_t paths = run.faulty.calls(Operation::registry_get_text);
    run.faulty.fail(row.operation, run.faulty.calls(row.operation) + row.call, false, row.error);
    run.mount();
    EXPECT_EQ(run.count(std::wstring(L"5: RegLoadAllUserHivesCommand Error: ") + row.line), 1) << run.log.size();
    EXPECT_EQ(run.count(L" Error: "), 1);
    EXPECT_EQ(run.mounted(), row.mounted);
    EXPECT_EQ(run.log.back(), L"5: RegLoadAllUserHivesCommand End execute. Next command 6.\n");
    const bool listed = row.operation == Operation::registry_open;
    EXPECT_EQ(run.faulty.calls(Operation::registry_get_text) == paths, listed) << "profiles need no privilege";
  }
}

TEST(UserHives, AnAccountWithoutThePrivilegesMountsAndUnmountsNothing) {
  NamedWorld world = three_users();
  world.state.environment.privileges = machine::Privileges();
  Trial run(world);
  run.mount();
  EXPECT_EQ(run.count(L"Error: Could not load user hive 'S-1-5-21-1-2-3-"), 3);
  EXPECT_EQ(run.mounted(), L"");
  Trial later(three_users());
  later.mount();
  later.world.change([](machine::State& state) { state.environment.privileges = machine::Privileges(); });
  later.run_on("RegUnloadPreviouslyLoadedUserHives");
  EXPECT_EQ(later.count(L"Error: Could not unload user hive 'S-1-5-21-1-2-3-"), 3);
  EXPECT_EQ(later.mounted(), L"1001 1002 1003");
}

TEST(UserHives, TheBackupPrivilegeEndsWithTheWorkAndTheRestorePrivilegeBehindTheEndLine) {
  Trial run(three_users());
  std::string seen;
  run.kept->on_line = [&] {
    const machine::State state = run.world.state();
    seen += machine::privilege_enabled(state, machine::privilege::restore) ? 'R' : '-';
    seen += machine::privilege_enabled(state, machine::privilege::backup) ? "B " : "- ";
  };
  run.mount();
  run.run_on("RegUnloadPreviouslyLoadedUserHives");
  const std::string each = "-- RB RB RB R- ";
  EXPECT_EQ(seen, each + each);
}

TEST(RegLoadAllUserHives, ANameOfMoreThanFiftyCharactersEndsTheWalk) {
  for (const std::size_t length : {std::size_t{50}, std::size_t{51}}) {
    NamedWorld world = three_users();
    const std::wstring longer = support::sid_of(1002) + std::wstring(length - support::sid_of(1002).size(), L'0');
    support::add_profile(world, longer, L"longer");
    Trial run(world);
    run.mount();
    EXPECT_EQ(run.count(L"loaded now."), length == 50 ? 4 : 2);
    EXPECT_EQ(run.count(L"Could not completely enumerate all the children of ProfileList."), length == 50 ? 0 : 1);
  }
}

TEST(RegLoadAllUserHives, ASecondRunHoldsEachProfileTwiceAndTriesEachAgain) {
  Trial run(three_users());
  const auto command = run.mount();
  run.log.clear();
  EXPECT_EQ(command->Execute(0, 0), 0u);
  EXPECT_EQ(run.count(L"Error: Could not load user hive"), 6);
  EXPECT_EQ(run.mounted(), L"1001 1002 1003");
}

TEST(RegLoadAllUserHives, OfAThousandUsersTwoCannotBeMountedAndAllOthersComeAndGo) {
  NamedWorld world;
  support::add_profiles(world, 1000);
  world.node(L"C:\\Users\\user1400\\NTUSER.DAT").bytes = std::vector<std::uint8_t>{1, 2, 3};
  world.held(L"C:\\Users\\user1700\\NTUSER.DAT", 1, ports::file_share::all);
  Trial run(world);
  run.mount();
  EXPECT_EQ(run.count(L"loaded now."), 998);
  EXPECT_EQ(run.count(L" Error: "), 2);
  EXPECT_EQ(run.count(L"Error: Could not load user hive 'S-1-5-21-1-2-3-1400'."), 1);
  EXPECT_EQ(run.count(L"Error: Could not load user hive 'S-1-5-21-1-2-3-1700'."), 1);
  run.run_on("RegUnloadPreviouslyLoadedUserHives");
  EXPECT_EQ(run.count(L"Command: Unloaded user hive "), 998);
  EXPECT_EQ(run.mounted(), L"");
  EXPECT_EQ(run.count(L" Error: "), 2);
}

TEST(RegUnloadPreviouslyLoadedUserHives, WhatAnyRunMountedGoesAndNothingElse) {
  Trial run(three_users());
  run.run_on("RegUnloadPreviouslyLoadedUserHives");
  EXPECT_EQ(run.lines(),
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand Begin execute.\n"
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand End execute. Next command 6.\n");
  run.mount();
  run.log.clear();
  // Another object, as of a later run; the user in the middle has a program with a key open.
  ports::RegistryKey key = ports::RegistryKey::null;
  ASSERT_EQ(run.system.registry.open(ports::RegistryKey::users, L"S-1-5-21-1-2-3-1002__ky_setup__\\Software", 0,
                                     ports::registry_access::read, key),
            code::success);
  run.run_on("RegUnloadPreviouslyLoadedUserHives");
  EXPECT_EQ(run.lines(),
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand Begin execute.\n"
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand: Unloaded user hive 'S-1-5-21-1-2-3-1001__ky_setup__'.\n"
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand Error: Could not unload user hive "
            L"'S-1-5-21-1-2-3-1002__ky_setup__'.\n"
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand: Unloaded user hive 'S-1-5-21-1-2-3-1003__ky_setup__'.\n"
            L"5: RegUnloadPreviouslyLoadedUserHivesCommand End execute. Next command 6.\n");
  EXPECT_EQ(run.mounted(), L"1002");
  EXPECT_EQ(run.system.registry.close(key), code::success);
  run.run_on("RegUnloadPreviouslyLoadedUserHives");
  EXPECT_EQ(run.mounted(), L"");
}

TEST(RegUnloadPreviouslyLoadedUserHives, WhatFailsIsToldAndTheOthersAreUnmounted) {
  // The walk meets .DEFAULT, then 1001 to 1003, then those who are logged on.
  const struct {
    const char* kind;
    Operation operation;
    std::uint64_t call;
    ports::ErrorCode error;
    const wchar_t* line;
    std::ptrdiff_t unloaded;
  } rows[] = {
      {"the longest name", Operation::registry_information, 1, code::access_denied,
       L"Could not get the maximum subkey length.\n", 0},
      {"the walk", Operation::registry_subkey_within, 4, code::more_data,
       L"Could not completely enumerate all the children of HKEY_USERS.\n", 2},
      {"the first privilege", Operation::tokens_privilege_value, 1, code::no_such_privilege,
       L"Could not set the RESTORE_NAME privilege.\n", 0},
      {"the second privilege", Operation::tokens_open_own, 2, code::access_denied,
       L"Could not set the BACKUP_NAME privilege.\n", 0},
      {"the second hive", Operation::registry_unload_hive, 2, code::access_denied,
       L"Could not unload user hive 'S-1-5-21-1-2-3-1002__ky_setup__'.\n", 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    Trial run(three_users());
    run.mount();
    run.log.clear();
    run.faulty.fail(row.operation, run.faulty.calls(row.operation) + row.call, false, row.error);
    run.run_on("RegUnloadPreviouslyLoadedUserHives");
    EXPECT_EQ(run.count(std::wstring(L"5: RegUnloadPreviouslyLoadedUserHivesCommand Error: ") + row.line), 1);
    EXPECT_EQ(run.count(L" Error: "), 1);
    EXPECT_EQ(run.count(L"Command: Unloaded user hive "), row.unloaded);
    EXPECT_EQ(run.log.back(), L"5: RegUnloadPreviouslyLoadedUserHivesCommand End execute. Next command 6.\n");
  }
}

TEST(UserHives, NamesAreToldApartByTheMarkerTheAccountsAndTheBackups) {
  for (const wchar_t* mount : {L"a__ky_setup__", L"__ky_setup__", L"a__ky_setup___Classes"}) {
    EXPECT_TRUE(IsMountName(mount)) << mount;
  }
  for (const wchar_t* other : {L"", L"a", L"a__KY_SETUP__", L"__ky_setup_"}) EXPECT_FALSE(IsMountName(other)) << other;
  for (const wchar_t* person : {L"S-1-5-21-1", L"S-1-5-180", L"s-1-5-18", L"S-1-5-21-1.BAK", L"bak"}) {
    EXPECT_TRUE(IsPersonsProfile(person)) << person;
  }
  for (const wchar_t* other : {L"S-1-5-18", L"S-1-5-19", L"S-1-5-20", L"S-1-5-21-1.bak", L".bakery"}) {
    EXPECT_FALSE(IsPersonsProfile(other)) << other;
  }
}

}  // namespace
}  // namespace ky
