// Which command library the program of the customer's machine takes, for real.
#include <windows.h>

#include <gtest/gtest.h>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/program.h"
#include "platform/ports/build.h"
#include "tests/contract/scratch.h"
#include "tests/contract/signed_files.h"

namespace scenario {
namespace {

/// A folder that programs are looked for in, with the program and its library; it goes at the end.
class Installed {
 public:
  Installed(const std::wstring& program, const std::wstring& library) {
    EXPECT_TRUE(CopyFileW(contract::signed_file(program).c_str(), (folder_ + L"\\kysetup.exe").c_str(), TRUE));
    EXPECT_TRUE(CopyFileW(contract::signed_file(library).c_str(), (folder_ + L"\\kycommands.dll").c_str(), TRUE));
    EXPECT_NE(GetEnvironmentVariableW(L"PATH", path_, MAX_PATH), 0U);
    EXPECT_TRUE(SetEnvironmentVariableW(L"PATH", folder_.c_str()));
  }
  ~Installed() {
    SetEnvironmentVariableW(L"PATH", path_);
    contract::remove_folder_tree(system_, folder_);
  }
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;

  [[nodiscard]] desk::ProgramRun run() const {
    return desk::run_program("kysetup", {}, "", std::chrono::milliseconds(60000));
  }

 private:
  const ports::System& system_ = *ports::real_system(ports::Module::null);
  const std::wstring folder_ = contract::make_scratch_folder(system_);
  wchar_t path_[MAX_PATH] = {};
};

TEST(Kysetup, TakesNoLibraryButThatOfItsOwnSigner) {
  contract::trust_test_authority();
  // The library here has no script: whoever loads it says so.
  const std::string loaded = "the script cannot be read out of kycommands.dll";
  const struct {
    const wchar_t* program;
    const wchar_t* library;
    std::string says;
  } rows[] = {
      {L"own.exe", L"own.dll", loaded},
      {L"own.exe", L"other.dll",
       "is refused: it is signed by 'Ky Test Signer Two' and this program by 'Ky Test Signer One'"},
      {L"own.exe", L"none.dll", "is refused: its signature is not trusted, result 0x800b0100"},
      {L"own.exe", L"tampered.dll", "is refused: its signature is not trusted, result 0x80096010"},
      {L"own.exe", L"stranger.dll", "is refused: its signature is not trusted, result 0x800b0109"},
      {L"none.exe", L"none.dll", loaded},
      {L"none.exe", L"other.dll", loaded},
  };
  for (const auto& row : rows) {
    const desk::ProgramRun run = Installed(row.program, row.library).run();
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.errors.find(row.says), std::string::npos) << run.errors << run.failure;
  }
}

}  // namespace
}  // namespace scenario
