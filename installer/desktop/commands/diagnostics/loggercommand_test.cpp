#include "installer/desktop/commands/diagnostics/loggercommand.h"

#include "diagnostics/crash_filter.h"
#include "installer/desktop/commands/base/trace.h"
#include "ky/error_api.h"
#include "tests/support/command_fixture.h"
#include "tests/support/file_names.h"
#include "tests/support/log_files.h"

namespace ky {
namespace {

class LoggerCommand : public CommandFixture {
 protected:
  // The command replaces the log in the store without releasing it.
  ~LoggerCommand() override { Release(former); }

  /// Runs the command and releases what it put, so that the merged file is there; gives the log files' names.
  std::vector<std::wstring> files_of_run(const Attributes& attributes) {
    run("Logger", attributes);
    release(keys::SelfFree_LoggerApi.name);
    release(keys::SelfFree_ErrorApi.name);
    const std::vector<std::wstring> names = support::file_names(system, L"C:\\ProgramData\\*.bin");
    for (const std::wstring& name : names) system.files.remove((L"C:\\ProgramData\\" + name).c_str());
    return names;
  }
  void release(const char* key) {
    Release(FromStored<CSelfFree*>(session.store().get(key)));
    session.store().put(key, 0);
  }

  ILoggerApi* const former = FromStored<ILoggerApi*>(session.store().get(keys::SelfFree_LoggerApi.name));
  const std::wstring time = std::to_wstring(system.clock.seconds_since_1970());
};

TEST_F(LoggerCommand, TheFormHangsOnWhatTheProviderTakes) {
  const struct {
    Attributes attributes;
    std::wstring name;
  } rows[] = {
      {{{"crypt", "AES"}, {"length", "256"}}, time + L".kyinstall.v2.bin"},
      {{{"crypt", "AES"}, {"length", "0x80"}, {"label", "setup"}}, L"setup." + time + L".kyinstall.v2.bin"},
      {{{"crypt", "AES"}, {"label", "setup"}}, L"setup." + time + L".kyinstall.bin"},
      {{{"length", "128"}}, time + L".kyinstall.bin"},
      {{{"crypt", "AES"}, {"length", "263"}}, time + L".kyinstall.v2.bin"},
      {{{"crypt", "AES"}, {"length", "100"}}, time + L".kyinstall.bin"},
      {{{"crypt", "AES"}, {"length", "7"}}, time + L".kyinstall.bin"},
      {{{"crypt", "RSA"}, {"length", "128"}}, time + L".kyinstall.bin"},
      {{{"crypt", "AES"}, {"length", "-8"}}, time + L".kyinstall.bin"},
      {{{"crypt", "None such"}, {"length", "128"}}, time + L".kyinstall.bin"},
      {{}, time + L".kyinstall.bin"},
  };
  for (const auto& row : rows) EXPECT_EQ(files_of_run(row.attributes), std::vector<std::wstring>{row.name});
}

TEST_F(LoggerCommand, StandsInTheStoreWithItsFirstRecordAndStaysEntered) {
  const auto command = run("Logger", {{"isMainThread", "1"}, {"crypt", "AES"}, {"length", "256"}});
  EXPECT_EQ(log, std::vector<std::wstring>{L"5: Logger Begin execute.\n"}) << "the log before has no end line";
  EXPECT_TRUE(command->GuardHeld());
  EXPECT_EQ(command->GetNextIndex(), 6);
  EXPECT_NE(FromStored<IErrorApi*>(session.store().get(keys::SelfFree_ErrorApi.name)), nullptr);
  // The main thread's file takes what other threads write.
  support::run_on_thread(system, [] { Trace(L"%s\n", L"guest"); });
  const std::wstring path =
      L"C:\\ProgramData\\" + time + L"." + std::to_wstring(system.threads.current_id()) + L".v2.bin";
  const std::vector<std::wstring> lines = support::take_apart(system.cng, support::read_whole(system, path)).lines;
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find(L"(Installer main thread) on "), std::wstring::npos);
  EXPECT_TRUE(lines[1].ends_with(L"] guest\n\n"));
}

TEST_F(LoggerCommand, ASecondThreadIsToldInAnothersName) {
  const auto command = run("Logger", {});
  release(keys::SelfFree_LoggerApi.name);
  session.store().put(keys::SelfFree_LoggerApi.name, ToStored<ILoggerApi*>(new support::KeptLog(log)));
  std::uint32_t result = 0;
  support::run_on_thread(system, [&] { result = command->Execute(0, 0); });
  EXPECT_EQ(result, 1359U);
  EXPECT_EQ(log.back(), L"5: Jump Error: Multiple threads attempting execution.\n");
}

using CrashHandlerCommand = CommandFixture;

TEST_F(CrashHandlerCommand, SetsBothHandlersAndStaysEntered) {
  const auto command = run("CrashHandler", {});
  EXPECT_EQ(log, std::vector<std::wstring>{L"5: CrashHandler Begin execute.\n"});
  EXPECT_TRUE(world.crashes().set_filter(diagnostics::dump_filter())) << "one was there";
  EXPECT_TRUE(world.crashes().set_invalid_parameter_handler());
  std::uint32_t result = 0;
  support::run_on_thread(system, [&] { result = command->Execute(0, 0); });
  EXPECT_EQ(result, 1359U);
  EXPECT_EQ(log.back(), L"5: CrashHandler Error: Multiple threads attempting execution.\n");
  EXPECT_EQ(command->Execute(0, 0), 0U) << "the same thread may come again";
}

}  // namespace
}  // namespace ky
