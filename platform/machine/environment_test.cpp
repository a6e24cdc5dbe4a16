#include "platform/machine/environment.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/machine/drives.h"
#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using namespace std::string_view_literals;

TEST(MachineEnvironment, ADriveStandsForItsDevice) {
  support::NamedWorld world;
  add_volume(world.state.files, L"D:", 2).device = L"\\Device\\HarddiskVolume10";
  add_volume(world.state.files, L"E:", 3);
  world.state.files.substitutes.emplace(L"S:", L"D:\\folder");
  world.file(L"D:\\folder\\a.exe");
  const auto machine = world.make();
  std::array<wchar_t, 64> room{};
  const struct {
    const wchar_t* name;
    std::size_t room;
    std::wstring_view answer;
    ports::ErrorCode error;
  } rows[] = {
      {L"C:", 64, L"\\Device\\HarddiskVolume1\0\0"sv, 0}, {L"d:", 64, L"\\Device\\HarddiskVolume10\0\0"sv, 0},
      {L"E:", 64, L"\\Device\\HarddiskVolume3\0\0"sv, 0}, {L"S:", 64, L"\\??\\D:\\folder\0\0"sv, 0},
      {L"S:", 15, L"\\??\\D:\\folder\0\0"sv, 0},          {L"S:", 14, L""sv, code::insufficient_buffer},
      {L"A:", 64, L""sv, code::file_not_found},           {L"C:\\", 64, L""sv, code::file_not_found},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::wstring(row.name).c_str());
    machine->errors().set_last(0);
    const std::uint32_t length = machine->environment().dos_device(row.name, std::span(room).first(row.room));
    EXPECT_EQ(std::wstring_view(room.data(), length), row.answer);
    EXPECT_EQ(machine->errors().last(), row.error);
  }
  const State state = machine->state();
  const NodeId file = look_up(state.files, parse_path(L"S:\\a.exe", L"C:\\").path, LastLink::itself).node;
  EXPECT_EQ(device_path_of(state.files, file), L"\\Device\\HarddiskVolume10\\folder\\a.exe");
}

}  // namespace
}  // namespace machine
