#include "platform/machine/driver_store.h"

#include <gtest/gtest.h>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using support::NamedWorld;

constexpr const wchar_t* package = L"C:\\Windows\\System32\\DriverStore\\FileRepository\\kyflt.inf_amd64_1";

class MachineDrivers : public testing::Test {
 protected:
  MachineDrivers() {
    world.file(L"C:\\Windows\\INF\\oem1.inf").file(L"C:\\Windows\\INF\\oem2.inf");
    world.node(L"C:\\Windows\\INF\\oem2.inf").store = std::wstring(package) + L"\\kyflt.inf";
    world.file(std::wstring(package) + L"\\kyflt.inf").file(std::wstring(package) + L"\\kyflt.sys");
  }

  NamedWorld world;
};

TEST_F(MachineDrivers, AnInfTellsWhereItCameFromWithRoomForAllOfIt) {
  const auto machine = world.make();
  const std::wstring store = std::wstring(package) + L"\\kyflt.inf";
  std::wstring room(store.size() + 1, L'#');
  std::uint32_t required = 0;
  EXPECT_TRUE(machine->drivers().inf_location(L"C:\\windows\\inf\\OEM2.inf", room, required));
  EXPECT_STREQ(room.c_str(), store.c_str());
  room.pop_back();
  EXPECT_FALSE(machine->drivers().inf_location(L"oem2.inf", room, required));
  EXPECT_EQ(machine->errors().last(), code::insufficient_buffer);
  EXPECT_FALSE(machine->drivers().inf_location(L"oem1.inf", room, required));
  EXPECT_EQ(machine->errors().last(), code::not_found);
}

TEST_F(MachineDrivers, AProgramRemovesThePackageThatItsCommandLineNames) {
  world.program(L"C:\\Windows\\System32\\pnputil.exe", 10, 0);
  Effect effect;
  effect.kind = EffectKind::remove_driver;
  world.state.programs.back().effects = {effect};
  const auto machine = world.make();
  for (const wchar_t* line : {L"pnputil.exe -d oem1.inf", L"\"C:\\Windows\\System32\\pnputil.exe\" -d oem3.inf",
                              L"pnputil.exe /delete-driver \"oem2.inf\" "}) {
    EXPECT_TRUE(machine->files().exists(package)) << "not yet";
    ports::CreatedProcess process;
    ASSERT_TRUE(machine->processes().create(line, nullptr, 0, process));
    machine->threads().sleep(20);
  }
  EXPECT_TRUE(machine->files().exists(L"C:\\Windows\\INF\\oem1.inf")) << "it came from no package";
  for (const wchar_t* gone : {L"C:\\Windows\\INF\\oem2.inf", package}) EXPECT_FALSE(machine->files().exists(gone));
}

}  // namespace
}  // namespace machine
