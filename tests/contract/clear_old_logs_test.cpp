#include <optional>

#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "ky/keys.h"
#include "platform/ports/environment.h"
#include "tests/contract/world.h"
#include "tests/support/kept_log.h"
#include "tests/support/script_text.h"

namespace contract {

namespace {

/// An environment whose common application data folder is another one.
class MovedEnvironment final : public ports::Environment {
 public:
  MovedEnvironment(ports::Environment& inner, std::wstring data) : inner_(inner), data_(std::move(data)) {}
  std::wstring folder(ports::KnownFolder which) override {
    return which == ports::KnownFolder::common_app_data ? data_ : inner_.folder(which);
  }
  std::wstring command_line() override { return inner_.command_line(); }
  std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override {
    return inner_.dos_device(name, into);
  }

 private:
  ports::Environment& inner_;
  const std::wstring data_;
};

using Texts = std::vector<std::wstring>;

/// Runs the command on a folder of its own, in each world.
class ClearOldLogs : public Contract {
 protected:
  /// Runs it once and gives what it logged between its first and its last line.
  Texts run(const std::wstring& folder, const support::Attributes& attributes, std::optional<std::uint64_t> limit) {
    MovedEnvironment environment(system().environment, folder);
    const ports::System moved = ports::with(system(), environment);
    const host::TableFactories library{ky::library::factories()};
    host::Session session(moved, library);
    EXPECT_EQ(session.start(host::built_in_script_key()), "");
    Texts log;
    session.store().put(ky::keys::SelfFree_LoggerApi.name, ky::ToStored<ky::ILoggerApi*>(new support::KeptLog(log)));
    if (limit) session.store().put("int_Limit", *limit);
    EXPECT_TRUE(session.load(support::ScriptText(moved.cipher).add("ClearOldLogs", attributes).text()).empty());
    host::RunObserver observer;
    EXPECT_EQ(session.run(observer).end, host::RunEnd::finished);
    EXPECT_EQ(session.return_code(), 0);
    EXPECT_GE(log.size(), 2U);
    EXPECT_EQ(log.front(), L"0: ClearOldLogsCommand Begin execute.\n");
    EXPECT_EQ(log.back(), L"0: ClearOldLogsCommand End execute. Next command 1.\n");
    return {log.begin() + 1, log.end() - 1};
  }

  ports::Handle open(const std::wstring& path) {
    return system().files.open(path.c_str(), ports::file_access::generic_write, ports::file_share::none,
                               ports::Disposition::open_always, 0);
  }
};

TEST_P(ClearOldLogs, WhatIsOlderThanTheLimitGoesAndNothingElse) {
  const struct {
    const wchar_t* name;
    bool goes;             // without a label
    bool goes_with_label;  // with "abc"
  } rows[] = {
      {L"1000.2.bin", true, false},
      {L"1001.2.bin", false, false},
      {L"abc.1000.kyinstall.v2.bin", true, true},
      {L"abc.1001.4.v2.bin", false, false},
      {L"abcd.123.bin", true, false},
      {L"ABC.6.bin", true, false},
      {L"ab.bin", false, false},
      {L"abc.none.bin", false, false},
      {L"abc.99999999999999999999.bin", false, false},
      {L"l4bel.5000.bin", true, false},  // a label's digits are taken for the time
      {L"abc.5.txt", false, false},
  };
  for (const bool labelled : {false, true}) {
    const std::wstring folder = world().folder() + (labelled ? L"\\labelled" : L"\\bare");
    ASSERT_TRUE(system().files.create_folder(folder.c_str()));
    ASSERT_TRUE(system().files.create_folder((folder + L"\\abc.7.bin").c_str()));
    for (const auto& row : rows) ASSERT_TRUE(system().waits.close(open(folder + L"\\" + row.name)));
    const std::wstring held = folder + L"\\abc.8.bin";
    const ports::Handle holder = open(held);
    support::Attributes attributes = {{"maxTimeVar", "Limit"}};
    if (labelled) attributes.emplace_back("label", "abc");
    // The low 32 bits are the limit.
    EXPECT_EQ(run(folder, attributes, (std::uint64_t{1} << 32) + 1001),
              (Texts{L"Max time value is: 1001\n", L"Log file: '" + held + L"' could not be deleted\n"}));
    for (const auto& row : rows) {
      EXPECT_NE(system().files.exists((folder + L"\\" + row.name).c_str()), labelled ? row.goes_with_label : row.goes)
          << testing::PrintToString(std::wstring(row.name));
    }
    EXPECT_TRUE(system().files.exists((folder + L"\\abc.7.bin").c_str())) << "a folder";
    EXPECT_TRUE(system().waits.close(holder));
  }
}

TEST_P(ClearOldLogs, WhatIsMissingIsToldAndHarmsNothing) {
  const std::wstring folder = world().folder();
  const std::wstring old = folder + L"\\1.bin";
  const support::Attributes with_limit = {{"maxTimeVar", "Limit"}};
  ASSERT_TRUE(system().waits.close(open(old)));
  EXPECT_EQ(run(folder, {}, 1001), Texts{L"Maximum time string is empty!"});
  EXPECT_EQ(run(folder, with_limit, std::nullopt), Texts{L"Maximum time is zero."});
  EXPECT_EQ(run(folder, with_limit, static_cast<std::uint64_t>(-5)), Texts{L"Max time value is: -5\n"});
  EXPECT_EQ(run(L"", with_limit, 1001), (Texts{L"Max time value is: 1001\n", L"Could not get logs folder!"}));
  EXPECT_EQ(run(folder + L"\\none", with_limit, 1001), Texts{L"Max time value is: 1001\n"});
  EXPECT_TRUE(system().files.exists(old.c_str()));
}

KY_CONTRACT(ClearOldLogs);

}  // namespace

}  // namespace contract
