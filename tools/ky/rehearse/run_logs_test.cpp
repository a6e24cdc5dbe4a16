#include "tools/ky/rehearse/run_logs.h"

#include <gtest/gtest.h>

#include <sstream>

#include "diagnostics/log_format.h"
#include "diagnostics/logger_api.h"
#include "diagnostics/reader/session_key.h"
#include "tests/support/bare_machine.h"
#include "tests/support/log_files.h"
#include "tests/support/temporary_folder.h"
#include "tools/ky/rehearse/run_and_report.h"

namespace rehearsal {
namespace {

/// A run on a machine whose wrapped keys are noted; its logs are put on the desk.
class RunLogs : public testing::Test {
 protected:
  RunLogs() { ports::bind(system_); }
  ~RunLogs() override { ports::unbind(); }

  /// A log of one message, sealed where `algorithm` is not empty.
  void log(const std::wstring& label, const wchar_t* algorithm, std::int32_t bits, const wchar_t* message) {
    {
      const std::unique_ptr<ky::CLoggerApi, ky::Releaser> log(new ky::CLoggerApi);
      if (*algorithm == L'\0') {
        log->SetXorKey(diagnostics::log_format::fall_back_key.data());
      } else {
        EXPECT_TRUE(log->SetupEncryption(algorithm, bits));
      }
      log->SetLabel(label + L".");
      log->StartThreadLog(nullptr, false);
      log->WriteLine(message);
    }
    const std::string name = std::string(label.begin(), label.end()) + "." +
                             std::to_string(system_.clock.seconds_since_1970()) +
                             (*algorithm == L'\0' ? ".kyinstall.bin" : ".kyinstall.v2.bin");
    const support::Bytes bytes =
        support::read_whole(system_, L"C:\\ProgramData\\" + std::wstring(name.begin(), name.end()));
    EXPECT_EQ(desk::write_file(folder_ / name.c_str(), std::string(bytes.begin(), bytes.end())), "");
    files_.push_back(folder_ / name.c_str());
  }

  /// The last words of the lines that `keys` let through.
  std::string read(const diagnostics::reader::KeyOpener* keys) {
    err_.str("");
    std::istringstream text(clear_text_of(files_, keys, err_).value_or("no log"));
    std::string words;
    for (std::string line; std::getline(text, line);) {
      if (line.find("====") == std::string::npos) words += line.substr(line.rfind(' ') + 1) + "|";
    }
    return words;
  }

  support::BareMachine desk_;
  NotingCng cng_{desk_.system.cng};
  const ports::System system_ = with(desk_.system, desk_.system.environment, desk_.system.termination, cng_);
  support::TemporaryFolder folder_;
  std::vector<std::string> files_;
  std::ostringstream err_;
};

TEST_F(RunLogs, ARunReadsAllThatItSealedWithoutThePrivateKey) {
  EXPECT_EQ(read(nullptr), "log|");
  log(L"a", L"AES", 128, L"one\n");
  log(L"b", L"AES", 256, L"two\n");  // a second log of the run has a key of its own
  log(L"c", L"", 0, L"three\n");
  diagnostics::reader::KeyOpener keys(desk_.system.cng);
  know_keys_of(cng_, keys);
  EXPECT_EQ(read(&keys), "one|two|three|");
  EXPECT_EQ(err_.str(), "");
  EXPECT_EQ(read(nullptr), "three|");
  EXPECT_NE(err_.str().find("it is sealed, and no private key was given"), std::string::npos);
}

TEST_F(RunLogs, AKeyThatWasNotSeenStaysUnknown) {
  log(L"a", L"AES", 256, L"one\n");
  NotingCng other(desk_.system.cng);
  diagnostics::reader::KeyOpener none(desk_.system.cng);
  know_keys_of(other, none);
  EXPECT_EQ(read(&none), "");
  EXPECT_NE(err_.str().find("the private key does not open it"), std::string::npos) << err_.str();
}

TEST(OwnLogs, AreThoseThatTheRunWrote) {
  Outcome outcome;
  outcome.logs = {{L"C:\\ProgramData\\s.1.2.bin", record::LogFate::pruned},
                  {L"C:\\ProgramData\\\u00E9.7.8.bin", record::LogFate::written}};
  const std::vector<std::string> own = own_logs(outcome);
  ASSERT_EQ(own, std::vector<std::string>{"C:\\ProgramData\\\xC3\xA9.7.8.bin"});
  EXPECT_EQ(file_name_of(own.front()), "\xC3\xA9.7.8.bin");
}

}  // namespace
}  // namespace rehearsal
