#include "platform/machine/files.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

// What only a machine can show; the rest is in the contract tests of the port.
namespace machine {
namespace {

namespace code = ports::code;
using support::NamedWorld;

TEST(MachineFiles, AMarkedFileGoesUnderTheNameThatItHasNow) {
  const auto machine = NamedWorld().file(L"C:\\a").make();
  Files& files = machine->files();
  const ports::Handle file =
      files.open(L"C:\\a", ports::file_access::erase, ports::file_share::all, ports::Disposition::open_existing, 0);
  ASSERT_TRUE(files.move(L"C:\\a", L"C:\\b", 0));
  ASSERT_TRUE(files.mark_deleted(file));
  ASSERT_TRUE(machine->waits().close(file));
  EXPECT_FALSE(files.exists(L"C:\\b"));
  EXPECT_EQ(machine->errors().last(), code::file_not_found);
}

TEST(MachineFiles, TemporaryNamesPassOverWhatIsThere) {
  const auto machine = NamedWorld().file(std::wstring(NamedWorld::temp) + L"\\ky_1000.tmp").make();
  std::array<wchar_t, 260> name{};
  EXPECT_EQ(machine->files().temp_file(NamedWorld::temp, L"ky_long", 0, name), 0x1001u);
  EXPECT_EQ(std::wstring(name.data()), std::wstring(NamedWorld::temp) + L"\\ky_1001.tmp");
}

TEST(MachineFiles, DelayedMovesAreBookedForWhatIsNotThereToo) {
  const auto machine = NamedWorld().make();
  const std::uint32_t later = ports::move_flag::delay_until_reboot;
  EXPECT_TRUE(machine->files().move(L"C:\\absent\\.\\x", nullptr, later));
  EXPECT_TRUE(machine->files().move(L"C:\\a", L"C:\\b", later | ports::move_flag::replace_existing));
  const PendingMoves expected = {{L"C:\\absent\\x", L"", false}, {L"C:\\a", L"C:\\b", true}};
  EXPECT_EQ(machine->state().pending_moves, expected);
}

TEST(MachineFiles, AFullDriveTakesNoMoreAndGetsItsRoomBack) {
  NamedWorld world;
  world.state.files.volumes.at(L"C:").free = 10;
  const auto machine = world.make();
  Files& files = machine->files();
  const ports::Handle file =
      files.open(L"C:\\a", ports::file_access::generic_write, 0, ports::Disposition::create_new, 0);
  const std::array<std::uint8_t, 8> bytes{};
  std::uint32_t written = 0;
  EXPECT_TRUE(files.write(file, bytes, written));
  EXPECT_FALSE(files.write(file, bytes, written));
  EXPECT_EQ(machine->errors().last(), code::disk_full);
  ASSERT_TRUE(machine->waits().close(file));
  ASSERT_TRUE(files.remove(L"C:\\a"));
  EXPECT_EQ(machine->state().files.volumes.at(L"C:").free, 10u);
}

TEST(MachineFiles, NamesAreToldApartByCaseInFoldersThatDoSo) {
  NamedWorld world;
  set_case_sensitive(world.folder(L"C:\\cs").node(L"C:\\cs"), true);
  const auto machine = world.file(L"C:\\cs\\a").file(L"C:\\cs\\A", "other").make();
  Files& files = machine->files();
  EXPECT_TRUE(files.exists(L"C:\\CS\\A")) << "the folder's own name stands in another one";
  EXPECT_FALSE(files.move(L"C:\\cs\\a", L"C:\\cs\\A", 0));
  EXPECT_EQ(machine->errors().last(), code::already_exists);
  EXPECT_TRUE(files.move(L"C:\\cs\\A", L"C:\\cs\\B", 0));
  EXPECT_TRUE(files.move(L"C:\\cs\\B", L"C:\\cs\\b", 0));
  EXPECT_FALSE(files.remove(L"C:\\cs\\B"));
  EXPECT_TRUE(files.create_folder(L"C:\\cs\\B"));
  ports::FolderRow row;
  EXPECT_EQ(files.find_first(L"C:\\cs\\A*", row), ports::Handle::invalid);
  const ports::Handle inner = files.open(L"C:\\cs\\B", ports::file_access::read_attributes, 0,
                                         ports::Disposition::open_existing, ports::open_flag::backup_semantics);
  std::uint32_t flags = 0;
  EXPECT_EQ(files.case_sensitivity(inner, flags), ports::status::success);
  EXPECT_EQ(flags, 1U) << "a new folder takes after the one that it stands in";
  machine->change([](State& state) { state.files.volumes.at(L"C:").case_query = false; });
  EXPECT_EQ(files.case_sensitivity(inner, flags), ports::status::invalid_info_class);
  ASSERT_TRUE(machine->waits().close(inner));
}

TEST(MachineFiles, AShortNameGoesWithTheNameThatItStandsFor) {
  NamedWorld world;
  world.file(L"C:\\Long folder\\a.html");
  world.node(L"C:\\").short_names.emplace(L"LONGFO~1", L"Long folder");
  world.node(L"C:\\Long folder").short_names.emplace(L"A~1.HTM", L"a.html");
  const auto machine = world.make();
  Files& files = machine->files();
  EXPECT_TRUE(files.exists(L"C:\\longfo~1\\a~1.htm"));
  ports::FolderRow row;
  const ports::Handle search = files.find_first(L"C:\\LONGFO~1\\*.htm", row);
  EXPECT_EQ(row.name, L"a.html");
  EXPECT_TRUE(files.find_close(search));
  EXPECT_TRUE(files.move(L"C:\\LONGFO~1\\A~1.HTM", L"C:\\Long folder\\b", 0));
  EXPECT_FALSE(files.exists(L"C:\\Long folder\\a~1.htm"));
  EXPECT_TRUE(files.remove(L"C:\\Long folder\\b"));
  EXPECT_TRUE(files.remove_folder(L"C:\\LONGFO~1"));
  EXPECT_FALSE(files.exists(L"C:\\longfo~1"));
}

TEST(MachineFiles, ASubstitutedDriveIsItsFolder) {
  NamedWorld world;
  add_volume(world.state.files, L"D:", 77);
  world.state.files.substitutes.emplace(L"S:", L"D:\\real");
  world.state.files.substitutes.emplace(L"T:", L"D:\\absent");
  const auto machine = world.file(L"D:\\real\\a").make();
  Files& files = machine->files();
  const auto told = [&](const wchar_t* path) {
    const ports::Handle file = files.open(path, ports::file_access::read_attributes, 0,
                                          ports::Disposition::open_existing, ports::open_flag::backup_semantics);
    ports::FileIdentity identity;
    ports::FileInformation information;
    EXPECT_TRUE(files.identity(file, identity));
    EXPECT_TRUE(files.information(file, information));
    EXPECT_EQ(information.volume, 77U);
    EXPECT_TRUE(machine->waits().close(file));
    return identity;
  };
  EXPECT_EQ(told(L"s:\\a"), told(L"D:\\real\\a"));
  EXPECT_EQ(told(L"S:\\"), told(L"D:\\real"));
  EXPECT_FALSE(files.exists(L"T:\\"));
  EXPECT_TRUE(files.move(L"D:\\real\\a", L"S:\\b", 0)) << "it stays on its volume";
  EXPECT_FALSE(files.move(L"S:\\b", L"S:\\", ports::move_flag::replace_existing));
  EXPECT_TRUE(files.exists(L"D:\\real\\b"));
}

TEST(MachineFiles, FoldersNeedRoomForANameBelowThem) {
  const auto machine = NamedWorld().make();
  const std::wstring deep = L"C:\\" + std::wstring(245, L'x');
  EXPECT_FALSE(machine->files().create_folder(deep.c_str()));
  EXPECT_EQ(machine->errors().last(), code::filename_too_long);
  EXPECT_TRUE(machine->files().create_folder((L"\\\\?\\" + deep).c_str()));
}

}  // namespace
}  // namespace machine
