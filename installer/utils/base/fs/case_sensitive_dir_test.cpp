#include "installer/utils/base/fs/case_sensitive_dir.h"

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/files.h"
#include "tests/support/bound_world.h"

namespace base::fs {
namespace {

namespace code = ports::code;

class CaseSensitiveDir : public support::BoundWorld {
 protected:
  CaseSensitiveDir() {
    world.folder(L"C:\\usual").folder(L"C:\\exact").file(L"C:\\file").junction(L"C:\\link", L"C:\\exact");
    world.junction(L"C:\\nowhere", L"C:\\absent");
    machine::set_case_sensitive(world.node(L"C:\\exact"), true);
    start();
  }
};

TEST_F(CaseSensitiveDir, AFolderTellsAndAnythingElseIsNoError) {
  const struct {
    const wchar_t* path;
    std::optional<bool> expected;
  } rows[] = {{L"C:\\usual", false},
              {L"C:\\usual\\", false},
              {L"C:\\exact", true},
              {L"C:\\link", true},
              {L"C:\\file", std::nullopt},
              {L"C:\\absent", std::nullopt},
              {L"C:\\absent\\absent", std::nullopt},
              {L"C:\\nowhere", std::nullopt},
              {L"", std::nullopt}};
  for (const auto& row : rows) {
    std::error_code error;
    EXPECT_EQ(IsCaseSensitiveDir(row.path, error), row.expected) << row.path;
    EXPECT_FALSE(error) << row.path;
  }
  EXPECT_FALSE(system->files.exists(L"C:\\absent")) << "asking makes no file";
}

TEST_F(CaseSensitiveDir, WhereTheSystemCannotSayTheReasonIsTold) {
  const auto as_code = [](ports::Status status) { return static_cast<ports::ErrorCode>(status); };
  const struct {
    Operation fails;
    std::uint64_t call;
    ports::ErrorCode fault;
    std::optional<bool> expected;
    ports::ErrorCode error;
  } rows[] = {
      {Operation::files_open, 1, code::access_denied, std::nullopt, 0},
      {Operation::files_information, 1, code::access_denied, std::nullopt, 0},
      {Operation::files_open, 2, code::sharing_violation, std::nullopt, code::sharing_violation},
      {Operation::files_case_sensitivity, 1, as_code(ports::status::invalid_parameter), std::nullopt,
       code::invalid_parameter},
      {Operation::files_case_sensitivity, 1, as_code(ports::status::access_denied), std::nullopt, code::access_denied},
      {Operation::files_case_sensitivity, 1, 0x80000005, false, 0},  // a warning, and no bit was set
  };
  for (const auto& row : rows) {
    start();
    faulty->fail(row.fails, row.call, false, row.fault);
    std::error_code error;
    EXPECT_EQ(IsCaseSensitiveDir(L"C:\\exact", error), row.expected) << &row - rows;
    EXPECT_EQ(error, row.error == 0 ? std::error_code() : winapi::error_of(row.error)) << &row - rows;
  }
  world.state.files.volumes.at(L"C:").case_query = false;
  start();
  std::error_code error;
  EXPECT_EQ(IsCaseSensitiveDir(L"C:\\usual", error), std::nullopt);
  EXPECT_TRUE(error);
}

using CaseSensitiveDirDeathTest = CaseSensitiveDir;

TEST_F(CaseSensitiveDirDeathTest, ANullPathStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "fast");
  std::error_code error;
  EXPECT_EXIT((void)IsCaseSensitiveDir(nullptr, error), testing::ExitedWithCode(1), "");
}

}  // namespace
}  // namespace base::fs
