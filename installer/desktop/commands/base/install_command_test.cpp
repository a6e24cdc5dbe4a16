#include "ky/install_command.h"

#include <thread>

#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/extern/base/include/winapi/com_error.h"
#include "platform/ports/codes.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

using InstallCommand = CommandFixture;

TEST_F(InstallCommand, IntegersFollowTheRuntimesRadix) {
  const struct {
    const char* text;
    std::int32_t index;
  } rows[] = {{"0x10", 16}, {"010", 8}, {"12", 12}, {"text", 0}, {"-3", -3}};
  for (const auto& row : rows) EXPECT_EQ(load("Nop", {{"index", row.text}}).command->GetIndex(), row.index) << row.text;
}

TEST_F(InstallCommand, NextFallsBackOnTheFollowingIndexAndWarnsBeforeARun) {
  const struct {
    Attributes attributes;
    std::int32_t next;
  } rows[] = {{{}, 6}, {{{"next", "9"}}, 9}, {{{"next", "-1"}}, 6}, {{{"next", "0"}}, 0}};
  for (const auto& row : rows) {
    log.clear();
    EXPECT_EQ(load("Nop", row.attributes).command->GetNextIndex(), row.next);
    EXPECT_EQ(log, std::vector<std::wstring>{L"[InstallCommand] Warning: GetNextIndex called before Execute\n"});
  }
}

TEST_F(InstallCommand, AConditionLooksAtAll64BitsAndASkippedCommandDoesNotWarn) {
  const auto conditioned = load("Nop", {{"execCondition", "When"}, {"next", "8"}});
  EXPECT_STREQ(conditioned.command->execCondition.get(), "int_When");
  EXPECT_FALSE(conditioned.command->CheckExecCondition());
  EXPECT_EQ(conditioned.command->GetNextIndex(), 8);
  EXPECT_TRUE(log.empty());
  put("When", -1);
  EXPECT_TRUE(conditioned.command->CheckExecCondition());
  session.store().put("int_When", std::uint64_t{1} << 32);
  EXPECT_TRUE(conditioned.command->CheckExecCondition());
}

TEST_F(InstallCommand, ErrVarIsKeptForTheHost) {
  EXPECT_STREQ(load("Nop", {{"errVar", "Outcome"}}).command->errVar.get(), "Outcome");
}

TEST_F(InstallCommand, ThePlainLoadReadsIndexAndNextInDecimalAlone) {
  const host::CommandOwner command(library.find("Nop")());
  AttributeMap* map = map_of({{"index", "010"}, {"next", "0x3"}, {"errVar", "E"}, {"execCondition", "C"}}, false);
  EXPECT_EQ(command->LoadPlain(&map), 0u);
  EXPECT_EQ(map, nullptr);  // taken over
  EXPECT_EQ(command->GetIndex(), 10);
  EXPECT_EQ(command->next, 0);
  EXPECT_EQ(command->errVar, nullptr);
  EXPECT_EQ(command->execCondition, nullptr);
}

TEST_F(InstallCommand, ANullMapLeavesAsAnException) {
  for (const NamedFactory& factory : library::factories()) {
    const host::CommandOwner command(factory.make());
    AttributeMap* none = nullptr;
    EXPECT_THROW(static_cast<void>(command->LoadCiphered(&none)), winapi::com_error) << factory.stem;
    EXPECT_THROW(static_cast<void>(command->LoadPlain(&none)), winapi::com_error) << factory.stem;
  }
}

TEST_F(InstallCommand, TheStandardShapeFramesTheWorkInTheLog) {
  run("Nop", {{"next", "7"}});
  EXPECT_EQ(log, (std::vector<std::wstring>{L"5: Nop Begin execute.\n", L"5: Nop End execute. Next command 7.\n"}));
}

/// A command that runs itself again, on this thread and on another.
class Nested final : public Destroyable<Nested, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t, std::uintptr_t) override {
    same = CInstallCommand::Execute(0, 0);
    if (guard.TryEnter()) {
      std::thread([this] { other = CInstallCommand::Execute(0, 0); }).join();
      guard.Leave();
    }
    return 0;
  }
  std::uint32_t same = 1;
  std::uint32_t other = 0;
};

TEST_F(InstallCommand, TheGuardRefusesASecondThreadAndLetsTheSameOneIn) {
  Nested command;
  EXPECT_EQ(command.Execute(0, 0), 0u);
  EXPECT_EQ(command.same, 0u);
  EXPECT_EQ(command.other, 1359u);
  EXPECT_FALSE(command.GuardHeld());
}

TEST_F(InstallCommand, EveryGuardedCommandTellsTheSecondThreadInItsOwnWords) {
  const struct {
    const char* stem;
    Attributes attributes;
    std::wstring speaker;
    std::wstring says = L" Error: Multiple threads attempting execution.\n";
  } rows[] = {
      {"Nop", {}, L"5: Nop"},
      {"Jump", {{"condition", "a"}, {"target", "1"}}, L"5: Jump"},
      {"PathExists", {{"path", "a"}, {"variable", "b"}}, L"5: PathExists"},
      {"GetStringFromXml", {{"xmlVar", "Doc"}}, L"5: GetStringFromXml"},
      {"LoadFilesFromResources", {}, L"5: LoadFilesFromResources"},
      {"CloseProcesses", {}, L"5: CloseProcesses"},
      {"CommandLineParser", {}, L"5: CommandLineParser"},
      {"RegLoadAllUserHives", {}, L"5: RegLoadAllUserHivesCommand"},
      {"RegUnloadPreviouslyLoadedUserHives", {}, L"5: RegUnloadPreviouslyLoadedUserHivesCommand"},
      {"RegKeyExists", {{"base", "HKEY_USERS"}, {"subkey", "a"}, {"variable", "b"}}, L"5: RegKeyExists"},
      {"DeleteIfeoKeys", {}, L"5 DeleteIfeoKeys", L" error: Multiple threads attempting execution."},
      {"CleanupINF", {}, L"5: CleanupINFCommand"},
      {"RemoveScheduledTask", {}, L"5: RemoveScheduledTask"},
  };
  put("Doc", L"<r/>");
  for (const auto& row : rows) {
    log.clear();
    const Loaded loaded = load(row.stem, row.attributes);
    std::uint32_t result = 0;
    // While the command is inside: the moment for another thread.
    kept->on_line = [&] {
      if (log.size() == 1) std::thread([&] { result = loaded.command->Execute(0, 0); }).join();
    };
    EXPECT_EQ(loaded.command->Execute(0, 0), 0u) << row.stem;
    EXPECT_EQ(result, 1359u) << row.stem;
    EXPECT_EQ(log.at(1), row.speaker + row.says);
  }
}

TEST_F(InstallCommand, AnUnreadableAttributeEndsTheLoadOnlyWhereTheResultHangsOnIt) {
  const struct {
    const char* stem;
    Attributes attributes;
    const char* ends;  // one for each attribute: 'y' where its failed read is the result, else 0 is
  } rows[] = {
      {"RegKeyExists", {{"errVar", "e"}, {"base", "HKEY_USERS"}, {"subkey", "a"}, {"variable", "b"}}, "nyyy"},
      {"RunDll32",
       {{"errVar", "e"}, {"filePath", "a"}, {"arguments", "b"}, {"currentDir", "c"}, {"waitAmount", "1"}},
       "nyyyn"},
      {"CleanupINF", {{"errVar", "e"}, {"driverName", "a"}}, "nn"},
      {"CleanupINF", {{"errVar", "e"}}, "y"},
      {"RemoveScheduledTask", {{"errVar", "e"}, {"name", "a"}}, "nn"},
      {"RemoveScheduledTask", {{"errVar", "e"}}, "y"},
  };
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.attributes.size(); ++i) {
      const std::uint64_t before = faulty.calls(faults::Operation::xml_text);
      faulty.fail(faults::Operation::xml_text, before + i + 1, false, static_cast<ports::ErrorCode>(ports::code::fail));
      EXPECT_EQ(load(row.stem, row.attributes).result,
                row.ends[i] == 'y' ? static_cast<std::uint32_t>(ports::code::fail) : 0u)
          << row.stem << ' ' << row.attributes[i].first;
    }
  }
}

TEST_F(InstallCommand, ExpansionReadsStringKeysAndLeavesTheOutputOnFailure) {
  put("A", L"[B]");
  put("B", L"b");
  std::wstring out = L"before";
  EXPECT_EQ(ExpandVariables(L"x[A]", out), 0u);
  EXPECT_EQ(out, L"xb");
  EXPECT_EQ(ExpandVariables(L"[A][None]", out), 31u);
  EXPECT_EQ(out, L"xb");
  wchar_t* fresh = nullptr;
  EXPECT_EQ(ExpandToNew(nullptr, &fresh), 0);
  EXPECT_EQ(ExpandToNew(L"[None]", &fresh), 0);
  EXPECT_EQ(fresh, nullptr);
  EXPECT_EQ(ExpandToNew(L"[A]", &fresh), 1);
  const std::unique_ptr<wchar_t[]> owner(fresh);
  EXPECT_STREQ(fresh, L"b");
}

TEST_F(InstallCommand, DecipheringTakesAnyPrefixAndTellsFailureByNull) {
  const script::TextCipher cipher(system.cipher, host::built_in_script_key());
  Decrypter& decrypter = HostDecrypter();
  const std::string longest(367, 'x');
  const struct {
    std::string value;
    const wchar_t* expected;
  } rows[] = {{cipher.encipher("text"), L"text"},
              {"?" + cipher.encipher("text").substr(1), L"text"},
              {cipher.encipher(""), L""},
              {cipher.encipher("\xC3\xA9\xF0\x9F\x98\x80"), L"\u00E9\xD83D\xDE00"},
              {"_AAAA", nullptr},
              {"_" + std::string(24, 'A'), nullptr}};
  for (const auto& row : rows) {
    const wchar_t* const got = DecipherValue(decrypter, base::strings::to_wide(row.value).c_str());
    if (row.expected == nullptr) {
      EXPECT_EQ(got, nullptr) << row.value;
    } else {
      EXPECT_STREQ(got, row.expected) << row.value;
    }
  }
  EXPECT_STREQ(DecipherValue(decrypter, nullptr), L"");
  EXPECT_EQ(std::wstring(DecipherValue(decrypter, base::strings::to_wide(cipher.encipher(longest)).c_str())).size(),
            longest.size());
}

using InstallCommandDeathTest = CommandFixture;

TEST_F(InstallCommandDeathTest, AValueThatDoesNotFitOrDecipherStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "fast");
  Decrypter& decrypter = HostDecrypter();
  EXPECT_EXIT(
      static_cast<void>(DecipherValue(decrypter, (L"_" + std::wstring(512, L'A')).c_str())),
      [](int status) { return status != 0; }, "");
  EXPECT_EXIT(
      static_cast<void>(DecipherValue(decrypter, L"")), [](int status) { return status != 0; }, "");
  EXPECT_EXIT(
      static_cast<void>(DecipherOrStop(decrypter, L"_AAAA")), [](int status) { return status != 0; }, "");
}

}  // namespace
}  // namespace ky
