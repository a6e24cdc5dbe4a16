#include "installer/utils/base/process/image_path.h"

#include <algorithm>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/environment.h"
#include "tests/support/bound_world.h"
#include "tests/support/fake_inspection.h"

namespace base::process {
namespace {

namespace code = ports::code;

/// Nothing but drives: what each name stands for, without the last terminator.
class FakeDrives final : public ports::Environment {
 public:
  std::map<std::wstring, std::wstring> devices;
  std::vector<std::wstring> asked;

  std::wstring folder(ports::KnownFolder) override { return {}; }
  std::wstring command_line() override { return {}; }
  std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override {
    asked.emplace_back(name);
    const auto found = devices.find(name);
    if (found == devices.end()) return 0;
    const std::wstring text = found->second + std::wstring(2, L'\0');
    if (text.size() > into.size()) return 0;
    std::copy(text.begin(), text.end(), into.begin());
    return static_cast<std::uint32_t>(text.size());
  }
};

class ImagePath : public support::BoundWorld {
 protected:
  ImagePath() {
    drives.devices = {{L"C:", L"\\Device\\HardDiskVolume2"},
                      {L"D:", L"\\Device\\HarddiskVolume1"},
                      {L"E:", L"\\Device\\HarddiskVolume10"},
                      {L"F:", L"\\Device\\Mup\\"},
                      {L"G:", full},
                      {L"H:", full + L'h'},
                      {L"S:", L"\\??\\C:\\folder"},
                      {L"X:", std::wstring(L"\\Device\\A\0\\Device\\B", 19)},
                      {L"Z:", L"\\Device\\HarddiskVolume2"}};
    start(drives, processes);
  }

  const std::wstring full = L"\\Device\\" + std::wstring(250, L'g');  // with its terminators all of a row
  FakeDrives drives;
  support::FakeInspection processes;
};

TEST_F(ImagePath, ADevicePathIsToldByTheFirstLetterOfItsDevice) {
  const std::wstring beyond = full + L"\\x", too_long = full + L"h\\x";
  const struct {
    const wchar_t* path;
    std::optional<std::wstring> expected;
  } rows[] = {
      {nullptr, std::nullopt},
      {L"", std::nullopt},
      {L"\\??\\C:\\x", std::nullopt},
      {L"\\device", std::nullopt},
      {L"\\Device\\", std::nullopt},
      {L"\\Device\\Unknown\\x", std::nullopt},
      {L"\\Device\\HarddiskVolume2\\x\\y.exe", L"C:\\x\\y.exe"},
      {L"\\DEVICE\\HARDDISKVOLUME2\\x", L"C:\\x"},
      {L"\\Device\\HarddiskVolume2\\", L"C:\\"},
      {L"\\Device\\HarddiskVolume2", std::nullopt},
      {L"\\Device\\HarddiskVolume1\\x", L"D:\\x"},
      {L"\\Device\\HarddiskVolume10\\x", L"E:\\x"},
      {L"\\Device\\HarddiskVolume100\\x", std::nullopt},
      {L"\\Device\\Mup\\server\\x", L"F:\\server\\x"},
      // Rows without room for the backslash, and without the backslash in the right place.
      {beyond.c_str(), L"G:g\\x"},
      {L"\\Device\\A\\x", L"X:A\\x"},
      {L"\\Device\\B\\x", std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(DevicePathToDosPath(row.path), row.expected) << &row - rows;
  drives.devices.erase(L"G:");
  EXPECT_EQ(DevicePathToDosPath(too_long.c_str()), L"G:gh\\x") << "what did not fit is no row of its own";
}

TEST_F(ImagePath, TheDrivesAreAskedForOnceForEachSystem) {
  EXPECT_EQ(DevicePathToDosPath(L"C:\\x"), std::nullopt);
  EXPECT_TRUE(drives.asked.empty());
  EXPECT_EQ(DevicePathToDosPath(L"\\Device\\New\\x"), std::nullopt);
  ASSERT_EQ(drives.asked.size(), 26u);
  EXPECT_EQ(drives.asked.front() + drives.asked.back(), L"A:Z:");
  drives.devices[L"A:"] = L"\\Device\\New";
  EXPECT_EQ(DevicePathToDosPath(L"\\Device\\New\\x"), std::nullopt);
  start(drives, processes);
  EXPECT_EQ(DevicePathToDosPath(L"\\Device\\New\\x"), L"A:\\x");
  EXPECT_EQ(drives.asked.size(), 52u);
}

TEST_F(ImagePath, AProcessTellsItsFileOrTheReason) {
  const std::wstring long_path = L"C:\\" + std::wstring(32'000, L'p');
  processes.processes[8] = {L"C:\\a b\\c.exe", L"\\Device\\HarddiskVolume1\\a b\\c.exe"};
  processes.processes[12] = {long_path, L"\\Device\\Unknown\\c.exe"};
  processes.processes[16] = {std::wstring(L"C:\\cut\0off", 10), L""};
  const std::optional<Operation> none;
  const struct {
    std::uint32_t id;
    bool caller_is_wow64;
    std::optional<Operation> fails;
    std::wstring path;
    ports::ErrorCode error;
  } rows[] = {
      {0, false, none, L"", 0},
      {8, false, none, L"C:\\a b\\c.exe", 0},
      {12, false, none, long_path, 0},
      {16, false, none, L"C:\\cut", 0},
      {20, false, none, L"", code::invalid_parameter},
      {8, false, Operation::inspection_open, L"", code::access_denied},
      {8, false, Operation::inspection_image_path, L"", code::access_denied},
      {8, true, Operation::inspection_is_wow64, L"C:\\a b\\c.exe", 0},
      // By way of the device nothing is told.
      {0, true, none, L"", 0},
      {8, true, none, L"D:\\a b\\c.exe", 0},
      {12, true, none, L"", 0},
      {16, true, none, L"", 0},
      {20, true, none, L"", 0},
      {8, true, Operation::inspection_open, L"", 0},
      {8, true, Operation::inspection_image_device_path, L"", 0},
  };
  for (const auto& row : rows) {
    start(drives, processes);
    processes.caller_is_wow64 = row.caller_is_wow64;
    if (row.fails) faulty->fail(*row.fails, 1, false, code::access_denied);
    std::error_code error;
    EXPECT_EQ(GetProcessImagePath(row.id, error), row.path) << &row - rows;
    EXPECT_EQ(error, row.error == 0 ? std::error_code() : winapi::error_of(row.error)) << &row - rows;
  }
}

TEST_F(ImagePath, TheOwnPathIsReadOnceForEachSystem) {
  start();
  EXPECT_EQ(GetOwnImagePath(), support::NamedWorld::setup);
  faulty->fail(Operation::inspection_open, 1, true, code::access_denied);
  EXPECT_EQ(&GetOwnImagePath(), &GetOwnImagePath());
  EXPECT_EQ(GetOwnImagePath(), support::NamedWorld::setup);
  start();
  faulty->fail(Operation::inspection_open, 1, false, code::access_denied);
  EXPECT_EQ(GetOwnImagePath(), L"");
  EXPECT_EQ(GetOwnImagePath(), L"") << "a failure is kept as well";
}

}  // namespace
}  // namespace base::process
