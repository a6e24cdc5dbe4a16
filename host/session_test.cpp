#include "host/session.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host_keys.h"
#include "installer/desktop/module/library.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "tests/support/bare_machine.h"
#include "tests/support/script_text.h"

namespace {

namespace code = ports::code;

/// Runs whole scripts of the host's own commands on a bare machine.
class SessionTest : public testing::Test, public support::BareMachine, public host::RunObserver {
 protected:
  SessionTest() { EXPECT_EQ(session.start(host::built_in_script_key()), ""); }

  /// The results of the commands in their order.
  std::vector<std::uint32_t> run(const support::ScriptText& whole) {
    for (const host::ScriptFault& fault : session.load(whole.text())) ADD_FAILURE() << describe(fault);
    results.clear();
    EXPECT_EQ(session.run(*this).end, host::RunEnd::finished);
    return results;
  }
  std::uint32_t run(const std::string& name, const support::Attributes& attributes) {
    return run(support::ScriptText(system.cipher).add(name, attributes)).at(0);
  }
  void after(const host::ProgramStep&, const host::StepOutcome& outcome) override { results.push_back(outcome.result); }

  std::int32_t integer(const char* key) { return ky::FromStored<std::int32_t>(session.store().get(key)); }
  std::wstring text(const char* key) {
    const auto* const held = ky::FromStored<ky::CString*>(session.store().get(key));
    return held == nullptr ? L"(none)" : held->value;
  }

  host::TableFactories library{ky::library::factories()};
  host::Session session{system, library};
  support::ScriptText script{system.cipher};
  std::vector<std::uint32_t> results;
};

TEST_F(SessionTest, TheHostsKeysStandBeforeTheFirstCommand) {
  EXPECT_EQ(session.store().keys().at(0).name, "SelfFree_Decrypter");
  for (const char* const path :
       {"String_SystemPath", "String_WindowsPath", "String_ProgramFilesPath", "String_ApplicationPath"}) {
    EXPECT_EQ(text(path), host::with_closing_backslash(text(path))) << path;
  }
  EXPECT_EQ(text("String_CommandLine"), system.environment.command_line());
  for (const char* const key :
       {"HANDLE_Refresh", "HANDLE_HardRefresh", "HMODULE_CurrentDll", "HMODULE_AdditionalDll"}) {
    EXPECT_NE(session.store().get(key), 0U) << key;
  }
  EXPECT_EQ(host::with_closing_backslash(L"C:\\a\\\\"), L"C:\\a\\");
  EXPECT_EQ(host::with_closing_backslash(L"C:"), L"C:\\");
  EXPECT_EQ(host::folder_of(L"C:\\a\\b.exe"), L"C:\\a\\");
}

TEST_F(SessionTest, TheReturnCodeOutlivesTheRelease) {
  EXPECT_EQ(run("SetVariable", {{"var", "ReturnCode"}, {"value", "-3"}}), code::success);
  session.release();
  EXPECT_EQ(session.return_code(), -3);
  EXPECT_EQ(session.store().get("SelfFree_Decrypter"), 0U);
}

TEST_F(SessionTest, SetVariablePutsIntegersAndExpandedTexts) {
  script.add("SetVariable", {{"var", "A"}, {"value", "0x10"}, {"strValue", "a"}});
  script.add("SetVariable", {{"var", "A"}, {"strValue", "[A][A]"}});
  script.add("SetVariable", {{"var", "A"}, {"strValue", "[None]"}, {"value", "3"}});
  EXPECT_EQ(run(script), (std::vector<std::uint32_t>{0, 0, code::gen_failure}));
  EXPECT_EQ(integer("int_A"), 16) << "nothing is put where a name is undefined";
  EXPECT_EQ(text("String_A"), L"aa");
}

TEST_F(SessionTest, SetProgressPutsWhatItIsGivenAndLeavesTheEventReset) {
  script.add("SetProgress", {{"max", "40"}}).add("SetProgress", {{"value", "7"}});
  EXPECT_EQ(run(script), (std::vector<std::uint32_t>{0, 0}));
  EXPECT_EQ(integer("int_CurrentProgressValue"), 7);
  EXPECT_EQ(integer("int_MaxProgressValue"), 40);
  const ports::Handle refresh{static_cast<std::uintptr_t>(session.store().get("HANDLE_Refresh"))};
  EXPECT_EQ(system.waits.wait({&refresh, 1}, false, 0), ports::wait_result::timeout);
}

TEST_F(SessionTest, RunCommandStartsWaitsAndTellsWhatFailed) {
  file(L"C:\\p q.exe");
  machine.change([](machine::State& state) {
    machine::Program program;
    program.image = L"C:\\p q.exe";
    program.runs = 1000;
    program.exit_code = 5;
    state.programs.push_back(program);
  });
  const std::uint32_t start = system.clock.ticks();
  script.add("SetVariable", {{"var", "P"}, {"strValue", "C:\\p q.exe"}});
  script.add("RunCommand", {{"command", "[P]"}, {"args", "/s [P]"}, {"silent", "1"}});
  script.add("RunCommand", {{"command", "[P]"}, {"waitAmount", "300"}});
  EXPECT_EQ(run(script), (std::vector<std::uint32_t>{0, 0, code::wait_timeout}));
  EXPECT_EQ(system.clock.ticks() - start, 300U);
  EXPECT_EQ(run("RunCommand", {{"command", "[P]"}, {"waitAmount", "-1"}, {"useShell", "1"}}), code::success)
      << "what a program ends with is its own";
  EXPECT_EQ(system.clock.ticks() - start, 1300U);
  EXPECT_EQ(machine.state().started.at(0).command_line, L"\"C:\\p q.exe\" /s C:\\p q.exe");

  EXPECT_EQ(run("RunCommand", {{"command", "C:\\none.exe"}}), code::file_not_found);
  EXPECT_EQ(run("RunCommand", {{"command", "C:\\none.exe"}, {"useShell", "1"}}), code::file_not_found);
  EXPECT_EQ(run("RunCommand", {{"command", "[P]"}, {"currentDir", "C:\\none"}}), code::directory_name_invalid);
  EXPECT_EQ(run("RunCommand", {{"command", "[None]"}}), code::gen_failure);
  EXPECT_EQ(run("RunCommand", {{"command", ""}}), code::invalid_parameter);
}

TEST_F(SessionTest, DeletionsExpandTheirTargetsAndRefuseWhatIsDangerous) {
  folder(L"C:\\T");
  file(L"C:\\T\\a");
  key(ports::RegistryKey::local_machine, L"SOFTWARE\\T\\In");
  value(ports::RegistryKey::local_machine, L"SOFTWARE\\Kept", L"Number");
  const std::string machine_root = "HKEY_LOCAL_MACHINE";

  script.add("SetVariable", {{"var", "Empty"}, {"strValue", ""}});
  script.add("SetVariable", {{"var", "T"}, {"strValue", "T"}});
  script.add("SetVariable", {{"var", "Slashed"}, {"strValue", "Sub\\"}});
  script.add("DeleteFolder", {{"path", "[WindowsPath][Empty]"}, {"recursive", "1"}});
  script.add("DeleteFolder", {{"path", "C:\\[None]"}, {"recursive", "1"}});
  script.add("DeleteRegKey", {{"base", machine_root}, {"subkey", "SOFTWARE\\[Empty]"}, {"recursive", "1"}});
  script.add("DeleteRegKey", {{"base", machine_root}, {"subkey", "SOFTWARE\\[None]"}, {"recursive", "1"}});
  script.add("DeleteFolder", {{"path", "C:\\T\\[Empty]"}, {"recursive", "1"}});
  script.add("DeleteFolder", {{"path", "C:\\T\\[Empty]\\"}, {"recursive", "1"}});
  script.add("DeleteRegKey", {{"base", machine_root}, {"subkey", "SOFTWARE\\T\\[Empty]"}, {"recursive", "1"}});
  // A closing backslash of the variable's own, and no name at all, are as they are without.
  script.add("DeleteFolder", {{"path", "C:\\T\\[Slashed]"}});
  script.add("DeleteRegKey", {{"base", machine_root}, {"subkey", "SOFTWARE\\T\\In[Empty]"}});
  script.add("DeleteFolder", {{"path", "C:\\[T]"}, {"recursive", "1"}});
  script.add("DeleteRegKey", {{"base", machine_root}, {"subkey", "SOFTWARE\\[T]"}, {"recursive", "1"}});
  script.add("DeleteRegValue", {{"base", machine_root}, {"subkey", "SOFTWARE\\Kept"}, {"value", "[None]"}});
  script.add("DeleteRegValue", {{"base", machine_root}, {"subkey", "[Empty]"}, {"value", "Number"}});
  script.add("DeleteRegValue", {{"base", machine_root}, {"subkey", "SOFTWARE\\Kept"}, {"value", "number"}});
  EXPECT_EQ(run(script), (std::vector<std::uint32_t>{0, 0, 0, 87, 31, 87, 31, 87, 87, 87, 0, 0, 0, 0, 31, 87, 0}));

  EXPECT_FALSE(there(L"C:\\T"));
  EXPECT_FALSE(key_there(ports::RegistryKey::local_machine, L"SOFTWARE\\T"));
  EXPECT_TRUE(key_there(ports::RegistryKey::local_machine, L"SOFTWARE\\Kept"));
  EXPECT_FALSE(value_there(ports::RegistryKey::local_machine, L"SOFTWARE\\Kept", L"Number"));
}

}  // namespace
