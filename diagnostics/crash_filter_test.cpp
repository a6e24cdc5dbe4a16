#include "diagnostics/crash_filter.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "platform/ports/build.h"
#include "tests/support/file_names.h"
#include "tests/support/log_files.h"
#include "tests/support/named_world.h"

namespace diagnostics {
namespace {

using support::NamedWorld;

/// One crash on a machine with the program at a place.
class Crash {
 public:
  explicit Crash(const NamedWorld& world) : machine_(world.make()), engines_(ports::make_engines(machine_->errors())) {
    ports::bind(system);
    EXPECT_EQ(dump_filter().on_crash(nullptr), 1);
  }
  ~Crash() { ports::unbind(); }
  Crash(const Crash&) = delete;
  Crash& operator=(const Crash&) = delete;

  [[nodiscard]] std::vector<std::wstring> files(const std::wstring& folder) const {
    return support::file_names(system, folder + L"\\*");
  }

 private:
  std::unique_ptr<machine::Machine> machine_;
  std::unique_ptr<ports::Engines> engines_;

 public:
  const ports::System system = machine_->system(*engines_);
};

NamedWorld program_at(const wchar_t* path) {
  NamedWorld world;
  world.file(path, "MZ");
  world.state.environment.program = path;
  return world;
}

/// The kind of dump that a file begins as, or nothing.
std::optional<std::uint64_t> kind_of(const support::Bytes& dump) {
  if (dump.size() < 32 || std::string(dump.begin(), dump.begin() + 4) != "MDMP") return std::nullopt;
  std::uint64_t flags = 0;
  std::memcpy(&flags, dump.data() + 24, sizeof flags);
  return flags;
}

TEST(CrashFilter, LeavesAFullAndANormalDumpBesideTheProgram) {
  const Crash crash(program_at(L"C:\\Setup\\kysetup.exe"));
  const std::wstring folder = L"C:\\Setup\\Dumps";
  const std::vector<std::wstring> names = crash.files(folder);
  ASSERT_EQ(names.size(), 2U);
  EXPECT_TRUE(names[0].starts_with(L"ky_") && names[0].ends_with(L".dmp"));
  EXPECT_TRUE(names[1].starts_with(L"kym"));
  EXPECT_EQ(names[0].substr(3), names[1].substr(3));
  EXPECT_EQ(kind_of(support::read_whole(crash.system, folder + L"\\" + names[0])), 2U);
  EXPECT_EQ(kind_of(support::read_whole(crash.system, folder + L"\\" + names[1])), 0U);
}

TEST(CrashFilter, AnUnderscoreOfTheFolderLeadsTheSecondDumpAstray) {
  const Crash lost(program_at(L"C:\\My_Setup\\kysetup.exe"));
  EXPECT_EQ(lost.files(L"C:\\My_Setup\\Dumps").size(), 1U);
  const Crash elsewhere(program_at(L"C:\\My_Setup\\kysetup.exe").folder(L"C:\\MymSetup\\Dumps"));
  EXPECT_EQ(elsewhere.files(L"C:\\My_Setup\\Dumps").size(), 1U);
  EXPECT_EQ(elsewhere.files(L"C:\\MymSetup\\Dumps"), elsewhere.files(L"C:\\My_Setup\\Dumps"));
}

TEST(CrashFilter, WhereTheFolderCannotBeMadeTheProfileOfAllUsersTakesThem) {
  NamedWorld world = program_at(L"C:\\Setup\\kysetup.exe");
  world.node(L"C:\\Setup").protect = true;
  EXPECT_EQ(Crash(world).files(L"C:\\ProgramData\\Dumps").size(), 2U);
  // A file of that name counts as the folder, and then nothing goes.
  const Crash crash(program_at(L"C:\\Setup\\kysetup.exe").file(L"C:\\Setup\\Dumps"));
  EXPECT_TRUE(crash.files(L"C:\\ProgramData\\Dumps").empty());
}

}  // namespace
}  // namespace diagnostics
