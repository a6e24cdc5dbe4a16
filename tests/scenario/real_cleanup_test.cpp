// Users' hives and scheduled tasks for real.
#include <windows.h>

#include <gtest/gtest.h>

#include <picojson.h>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"
#include "platform/ports/build.h"
#include "platform/ports/processes.h"
#include "platform/ports/threads.h"
#include "tests/contract/real_layout.h"
#include "tests/contract/scratch.h"
#include "tests/scenario/laid_out.h"
#include "tests/scenario/programs.h"

namespace scenario {
namespace {

constexpr wchar_t profile_list[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\";

class RealCleanup : public testing::Test {
 protected:
  /// Writes a script and gives the arguments that run it.
  std::vector<std::string> run_of(const std::string& name, const std::string& commands) {
    out_ = output_folder(name);
    const std::string script = desk::join(out_, "script.xml");
    EXPECT_EQ(desk::write_file(script, "<install version=\"1.0\"><commands>" + commands + "</commands></install>"), "");
    return {"run",   "--script", script, "--key", desk_path(KY_SOURCE_FOLDER "/keys/development/log-private.pem"),
            "--out", out_};
  }
  [[nodiscard]] bool logged(const std::string& text) const {
    return read_text(desk::join(out_, "log.txt")).find(text) != std::string::npos;
  }
  [[nodiscard]] std::string result(const char* member) const {
    picojson::value document;
    EXPECT_EQ(picojson::parse(document, read_text(desk::join(out_, "result.json"))), "");
    return document.get("globals").get(member).serialize();
  }

  const ports::System& real_ = *ports::real_system(ports::Module::null);

 private:
  std::string out_;
};

/// Two profiles of users who are not logged on.
class RealHives : public RealCleanup {
 protected:
  RealHives() {
    for (const wchar_t* sid : sids) {
      const std::wstring folder = folder_ + L"\\" + sid;
      EXPECT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
      contract::save_hive(folder + L"\\NTUSER.DAT", L"Software\\KyScenarioHive", L"Software\\KyHeld");
      const std::wstring row = std::wstring(profile_list) + sid;
      EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, row.c_str(), L"ProfileImagePath", REG_EXPAND_SZ, folder.c_str(),
                                static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t))),
                ERROR_SUCCESS);
    }
    EXPECT_NE(event_, nullptr);
  }
  ~RealHives() override {
    SetEvent(event_);
    CloseHandle(event_);
    for (const wchar_t* sid : sids) contract::remove_key_tree(real_, std::wstring(profile_list) + sid);
    contract::remove_folder_tree(real_, folder_);
  }

  /// How many hives with the marker are mounted.
  static std::size_t mounted() {
    std::size_t count = 0;
    wchar_t name[256];
    DWORD length = 256;
    for (DWORD i = 0; RegEnumKeyExW(HKEY_USERS, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = 256) {
      if (std::wstring(name).find(L"__ky_setup__") != std::wstring::npos) ++count;
    }
    return count;
  }

  static constexpr const wchar_t* sids[] = {L"S-1-5-21-77-77-77-1", L"S-1-5-21-77-77-77-2"};

  const contract::OwnHives own_;
  const std::wstring folder_ = contract::make_scratch_folder(real_);
  const HANDLE event_ = CreateEventW(nullptr, TRUE, FALSE, L"ky-hives-mounted");
};

TEST_F(RealHives, AreMountedAndUnmountedAlsoByARunAfterOneThatWasKilled) {
  // Between mounting and unmounting the run waits for the event.
  const std::vector<std::string> run = run_of(
      "real-hives",
      R"(<SetVariable var="Held" value="0"/><RegLoadAllUserHives/>)"
      R"(<RegKeyExists base="HKEY_USERS" subkey="S-1-5-21-77-77-77-2__ky_setup__\Software\KyHeld" variable="Held"/>)"
      R"(<RunCommand command=")" +
          desk_path(KY_CHILD) + R"(" args="await ky-hives-mounted 0" waitAmount="-1" silent="1"/>)" +
          "<RegUnloadPreviouslyLoadedUserHives/>");
  const std::string program = desk_path(KY_PROGRAM);
  ASSERT_TRUE(SetEvent(event_));
  EXPECT_EQ(run_program(program, run), 0);
  EXPECT_EQ(result("int_Held"), "1");
  EXPECT_EQ(mounted(), 0U);
  for (const wchar_t* sid : sids) {
    const std::string user = base::strings::to_utf8(sid);
    EXPECT_TRUE(logged("RegLoadAllUserHivesCommand: User hive '" + user + "' loaded now."));
    EXPECT_TRUE(logged("Unloaded user hive '" + user + "__ky_setup__'."));
  }

  ASSERT_TRUE(ResetEvent(event_));
  ports::CreatedProcess killed;
  ASSERT_TRUE(real_.processes.create(base::strings::to_wide(command_line(program, run)).c_str(), nullptr,
                                     ports::creation_flag::no_window, killed));
  for (int tries = 0; tries < 600 && mounted() < 2; ++tries) Sleep(100);
  EXPECT_TRUE(real_.processes.terminate(killed.process, 9));
  EXPECT_EQ(real_.waits.wait({&killed.process, 1}, false, 60000), 0U);
  EXPECT_TRUE(real_.waits.close(killed.thread) && real_.waits.close(killed.process));
  EXPECT_EQ(mounted(), 2U) << "nothing else unmounts them";

  ASSERT_TRUE(SetEvent(event_));
  EXPECT_EQ(run_program(program, run), 0);
  EXPECT_EQ(mounted(), 0U);
  EXPECT_EQ(result("int_Held"), "1");
  EXPECT_TRUE(logged("Error: Could not load user hive 'S-1-5-21-77-77-77-1'.")) << "its name is taken";
  EXPECT_TRUE(logged("Unloaded user hive 'S-1-5-21-77-77-77-2__ky_setup__'."));
}

TEST_F(RealCleanup, TheTaskThatIsNamedGoesAndNoOther) {
  contract::RegisteredTasks tasks;
  for (const wchar_t* path : {L"\\Ky Named", L"\\Ky Named Too", L"\\Ky Scenario\\Ky Named"}) tasks.add(path);
  const std::vector<std::string> run =
      run_of("real-tasks", "<RemoveScheduledTask name=\"Ky Absent\"/><RemoveScheduledTask name=\"Ky Named\"/>");
  EXPECT_EQ(run_program(desk_path(KY_PROGRAM), run), 0);
  EXPECT_TRUE(logged("Scheduled task 'Ky Absent' was not removed. Error '31'"));
  EXPECT_TRUE(logged("Scheduled task 'Ky Named' was removed"));
  EXPECT_FALSE(contract::has_task(L"\\Ky Named"));
  EXPECT_TRUE(contract::has_task(L"\\Ky Named Too"));
  EXPECT_TRUE(contract::has_task(L"\\Ky Scenario\\Ky Named"));
}

}  // namespace
}  // namespace scenario
