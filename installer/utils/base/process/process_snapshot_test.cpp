#include "installer/utils/base/process/process_snapshot.h"

#include <string>
#include <system_error>
#include <vector>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "tests/support/bound_world.h"
#include "tests/support/fake_inspection.h"

namespace base::process {
namespace {

class ProcessSnapshots : public support::BoundWorld {
 protected:
  ProcessSnapshots() {
    fake.rows = {{L"[System Process]", 0, 0},  {L"System", 4, 0},     {L"my note.exe", 8, 4},
                 {L"notepad.exe", 12, 4},      {L"NOTES.EXE", 16, 4}, {L"notes.exe", 20, 12},
                 {L"\xD83D\xDE00.exe", 24, 12}};
    start(fake);
  }
  static std::vector<std::uint32_t> walked() {
    std::vector<std::uint32_t> ids;
    ProcessSnapshot snapshot;
    for (snapshot.begin(); !snapshot.at_end(); snapshot.next()) ids.push_back(snapshot.current().pid);
    EXPECT_EQ(snapshot.current(), ProcessEntry());
    return ids;
  }

  support::FakeInspection fake;
};

TEST_F(ProcessSnapshots, AWalkEndsWithTheRowsOrWithTheFirstFailure) {
  EXPECT_EQ(walked(), (std::vector<std::uint32_t>{0, 4, 8, 12, 16, 20, 24}));
  faulty->fail(Operation::inspection_first, 2, false, ports::code::no_more_files);
  EXPECT_TRUE(walked().empty());
  const std::uint64_t third = faulty->calls(Operation::inspection_next) + 3;
  faulty->fail(Operation::inspection_next, third, false, ports::code::invalid_handle);
  EXPECT_EQ(walked(), (std::vector<std::uint32_t>{0, 4, 8}));
  ProcessSnapshot again;
  again.begin();
  again.next();
  again.begin();
  EXPECT_EQ(again.current(), (ProcessEntry{L"[System Process]", 0, 0}));
}

TEST_F(ProcessSnapshots, WithoutASnapshotTheCodeIsRaised) {
  faulty->fail(Operation::inspection_snapshot, 1, false, ports::code::access_denied);
  try {
    const ProcessSnapshot snapshot;
    ADD_FAILURE();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), winapi::error_of(ports::code::access_denied));
    EXPECT_EQ(std::string(error.what()).rfind("CreateToolhelp32Snapshot has failed!", 0), 0u) << error.what();
  }
}

TEST_F(ProcessSnapshots, AProcessIsFoundByTheExactBeginningOfItsName) {
  const struct {
    const wchar_t* name;
    std::uint32_t id;
  } rows[] = {{L"note", 12}, {L"notepad.exe", 12}, {L"NOTE", 16},         {L"notes", 20},
              {L"Note", 0},  {L"notepad.exe2", 0}, {L"pad", 0},           {L"", 0},
              {nullptr, 0},  {L"\xD83D", 24},      {L"[System Proces", 0}};
  for (const auto& row : rows) EXPECT_EQ(FindProcessIdByPrefix(row.name), row.id) << &row - rows;
  faulty->fail(Operation::inspection_next, faulty->calls(Operation::inspection_next) + 2, false,
               ports::code::not_enough_memory);
  EXPECT_EQ(FindProcessIdByPrefix(L"note"), 0u);
  faulty->fail(Operation::inspection_snapshot, 1, true, ports::code::not_enough_memory);
  EXPECT_EQ(FindProcessIdByPrefix(L"note"), 0u);
}

}  // namespace
}  // namespace base::process
