#include "platform/record/recorder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/machine/file_lookup.h"
#include "platform/machine/machine.h"
#include "platform/machine/path.h"
#include "platform/ports/codes.h"
#include "platform/ports/com.h"
#include "platform/ports/driver_store.h"
#include "platform/ports/files.h"
#include "platform/ports/log_streams.h"
#include "platform/ports/registry.h"
#include "platform/ports/task_scheduler.h"
#include "platform/ports/threads.h"
#include "tests/support/bare_machine.h"
#include "tests/support/user_profiles.h"

namespace record {

void PrintTo(const Change& change, std::ostream* out) {
  *out << change.kind << ' ' << ::testing::PrintToString(change.path) << ": "
       << ::testing::PrintToString(change.before.value_or(L"-")) << " -> "
       << ::testing::PrintToString(change.after.value_or(L"-"));
}

void PrintTo(const Deletion& deletion, std::ostream* out) {
  *out << deletion.kind << ' ' << ::testing::PrintToString(deletion.path) << ": " << deletion.code
       << (deletion.gone ? ", gone" : ", there");
}

namespace {

namespace access = ports::file_access;
using Changes = std::vector<Change>;
using Deletions = std::vector<Deletion>;
using ports::RegistryKey;
constexpr std::uint32_t all_rights =
    ports::registry_access::read | ports::registry_access::write | ports::registry_access::erase;

/// A machine with a folder, files and keys, laid out before anybody records.
class RecorderTest : public ::testing::Test {
 protected:
  RecorderTest() {
    desk.folder(L"C:\\Suite");
    write(world, L"C:\\Suite\\one.txt", "12345");
    write(world, L"C:\\Suite\\two.txt", "1");
    const RegistryKey key = create(world, L"Software\\Suite");
    set(world, key, L"Path", 7);
    set(world, key, L"", 1);
    world.registry.close(key);
    recorder = std::make_unique<Recorder>(world);
    system = &recorder->system();
  }

  static void write(const ports::System& on, const wchar_t* path, std::string_view text) {
    const ports::Handle file = on.files.open(path, access::generic_write, 0, ports::Disposition::create_always, 0);
    ASSERT_NE(file, ports::Handle::invalid);
    std::uint32_t written = 0;
    EXPECT_TRUE(on.files.write(file, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, written));
    EXPECT_TRUE(on.waits.close(file));
  }

  static RegistryKey create(const ports::System& on, const wchar_t* path) {
    RegistryKey key = RegistryKey::null;
    bool created = false;
    EXPECT_EQ(on.registry.create(RegistryKey::local_machine, path, 0, all_rights, key, created), 0u);
    return key;
  }

  static void set(const ports::System& on, RegistryKey key, const wchar_t* name, std::uint8_t number) {
    EXPECT_EQ(on.registry.set(key, name, {ports::RegistryType::number, {number, 0, 0, 0}}), 0u);
  }

  ports::Handle open_to_delete(const wchar_t* path) const {
    return system->files.open(path, access::erase, ports::file_share::all, ports::Disposition::open_existing,
                              ports::open_flag::backup_semantics | ports::open_flag::open_reparse_point);
  }

  support::BareMachine desk;
  machine::Machine& machine = desk.machine;
  const ports::System& world = desk.system;
  std::unique_ptr<Recorder> recorder;
  const ports::System* system = nullptr;
};

TEST_F(RecorderTest, FilesThatGoComeOrDifferAreChanges) {
  EXPECT_TRUE(system->files.remove(L"C:/suite/ONE.txt"));
  write(*system, L"C:\\Suite\\two.txt", "2");
  write(*system, L"C:\\Suite\\new.txt", "123");
  EXPECT_TRUE(system->files.create_folder(L"C:\\Fresh\\"));
  EXPECT_TRUE(system->files.create_link(L"C:\\Link", L"C:\\Suite", true));
  const Changes changes = recorder->changes();
  ASSERT_EQ(changes.size(), 5u);
  EXPECT_EQ(changes[0], (Change{"file", L"C:\\Suite\\new.txt", std::nullopt, L"archive, 3 bytes"}));
  // Attributes and size are as they were: only the content tells.
  EXPECT_EQ(changes[1].path, L"C:\\Suite\\two.txt");
  EXPECT_EQ(changes[1].before->substr(0, 7), L"digest ");
  EXPECT_NE(changes[1].before, changes[1].after);
  EXPECT_EQ(changes[2], (Change{"file", L"C:\\suite\\ONE.txt", L"archive, 5 bytes", std::nullopt}));
  EXPECT_EQ(changes[3], (Change{"folder", L"C:\\Fresh", std::nullopt, L"present"}));
  EXPECT_EQ(changes[4], (Change{"link", L"C:\\Link", std::nullopt, L"present"}));
}

TEST_F(RecorderTest, WhatIsPutBackIsNoChange) {
  EXPECT_TRUE(system->files.move(L"C:\\Suite\\one.txt", L"C:\\Suite\\three.txt", 0));
  EXPECT_TRUE(system->files.move(L"C:\\Suite\\three.txt", L"C:\\Suite\\one.txt", 0));
  EXPECT_TRUE(system->files.set_attributes(L"C:\\Suite\\two.txt", ports::file_attribute::read_only));
  EXPECT_TRUE(system->files.set_attributes(L"C:\\Suite\\two.txt", ports::file_attribute::archive));
  wchar_t name[260] = {};
  EXPECT_NE(system->files.temp_file(L"C:\\Suite", L"ky_", 0, name), 0u);
  EXPECT_FALSE(system->files.move(L"C:\\missing", name, ports::move_flag::replace_existing));
  EXPECT_TRUE(system->files.remove(name));
  system->registry.close(create(*system, L"Software\\Suite"));
  EXPECT_EQ(recorder->changes(), Changes{});
}

TEST_F(RecorderTest, AMovedFolderTakesItsTreeAlong) {
  EXPECT_TRUE(system->files.move(L"C:\\Suite", L"C:\\Away", 0));
  std::vector<std::wstring> told;
  for (const Change& change : recorder->changes()) told.push_back((change.before ? L"-" : L"+") + change.path);
  EXPECT_EQ(told, (std::vector<std::wstring>{L"+C:\\Away\\one.txt", L"+C:\\Away\\two.txt", L"-C:\\Suite\\one.txt",
                                             L"-C:\\Suite\\two.txt", L"+C:\\Away", L"-C:\\Suite"}));
}

TEST_F(RecorderTest, AFileMarkedForDeletionCountsOnlyWhenItIsGone) {
  const ports::Handle file = open_to_delete(L"C:\\Suite\\one.txt");
  EXPECT_TRUE(system->files.mark_deleted(file));
  EXPECT_FALSE(recorder->deletions().at(0).gone);
  EXPECT_TRUE(system->waits.close(file));
  EXPECT_EQ(recorder->deletions(), (Deletions{{"file", L"C:\\Suite\\one.txt", 0, true}}));
  EXPECT_EQ(recorder->changes(), (Changes{{"file", L"C:\\Suite\\one.txt", L"archive, 5 bytes", std::nullopt}}));
}

TEST_F(RecorderTest, DeletionsTellWhatWasAbsentAndWhatStays) {
  const ports::Handle held = world.files.open(L"C:\\Suite\\one.txt", access::generic_read, ports::file_share::read,
                                              ports::Disposition::open_existing, 0);
  EXPECT_FALSE(system->files.remove(L"C:\\Suite\\one.txt"));
  EXPECT_EQ(system->errors.last(), ports::code::sharing_violation);
  EXPECT_EQ(open_to_delete(L"C:\\Gone"), ports::Handle::invalid);
  EXPECT_EQ(system->errors.last(), ports::code::file_not_found);
  EXPECT_TRUE(system->files.remove(L"C:\\Suite\\two.txt"));
  EXPECT_FALSE(system->files.remove(L"C:\\Suite\\two.txt"));
  EXPECT_FALSE(system->files.remove_folder(L"C:\\Suite"));
  EXPECT_EQ(recorder->deletions(), (Deletions{{"file", L"C:\\Suite\\one.txt", ports::code::sharing_violation, false},
                                              {"folder", L"C:\\Gone", ports::code::file_not_found, true},
                                              {"file", L"C:\\Suite\\two.txt", 0, true},
                                              {"folder", L"C:\\Suite", ports::code::directory_not_empty, false}}));
  world.waits.close(held);
}

TEST_F(RecorderTest, MovesForTheNextStartAreChanges) {
  EXPECT_TRUE(system->files.move(L"C:\\Suite\\one.txt", nullptr, ports::move_flag::delay_until_reboot));
  EXPECT_EQ(recorder->changes(), (Changes{{"delayed-move", L"C:\\Suite\\one.txt", std::nullopt, L"delete"}}));
}

TEST_F(RecorderTest, ADeletedKeyTakesItsValuesAlong) {
  RegistryKey parent = RegistryKey::null;
  RegistryKey key = RegistryKey::null;
  ASSERT_EQ(system->registry.open(RegistryKey::local_machine, L"Software", 0, all_rights, parent), 0u);
  ASSERT_EQ(system->registry.open(parent, L"Suite", 0, all_rights, key), 0u);
  EXPECT_EQ(system->registry.remove(key), 0u);
  EXPECT_EQ(system->registry.close(key), 0u);
  EXPECT_EQ(system->registry.open(parent, L"Suite", 0, all_rights, key), ports::code::file_not_found);
  EXPECT_EQ(system->registry.close(parent), 0u);
  const std::wstring path = L"HKEY_LOCAL_MACHINE\\Software\\Suite";
  EXPECT_EQ(recorder->changes(),
            (Changes{{"registry-key", path, L"present", std::nullopt},
                     {"registry-value", path + L"\\(default)", L"REG_DWORD 0x00000001", std::nullopt},
                     {"registry-value", path + L"\\Path", L"REG_DWORD 0x00000007", std::nullopt}}));
  EXPECT_EQ(recorder->deletions(), (Deletions{{"registry-key", path, 0, true}}));
}

TEST_F(RecorderTest, KeysOnTheWayAndSetValuesAreChanges) {
  const RegistryKey key = create(*system, L"Software\\Suite\\A\\B");
  set(*system, key, L"New", 1);
  system->registry.close(key);
  const RegistryKey suite = create(*system, L"Software\\Suite");
  set(*system, suite, L"Path", 8);
  EXPECT_EQ(system->registry.remove_value(suite, L"Missing"), ports::code::file_not_found);
  system->registry.close(suite);
  const std::wstring path = L"HKEY_LOCAL_MACHINE\\Software\\Suite";
  EXPECT_EQ(recorder->changes(),
            (Changes{{"registry-key", path + L"\\A", std::nullopt, L"present"},
                     {"registry-key", path + L"\\A\\B", std::nullopt, L"present"},
                     {"registry-value", path + L"\\A\\B\\New", std::nullopt, L"REG_DWORD 0x00000001"},
                     {"registry-value", path + L"\\Path", L"REG_DWORD 0x00000007", L"REG_DWORD 0x00000008"}}));
  EXPECT_EQ(recorder->deletions(),
            (Deletions{{"registry-value", path + L"\\Missing", ports::code::file_not_found, true}}));
}

TEST_F(RecorderTest, AKeysTreeGoesWithAllThatLinksLeadTo) {
  desk.key(RegistryKey::local_machine, L"Software\\Suite\\A");
  desk.key(RegistryKey::local_machine, L"Software\\Elsewhere\\B");
  desk.key_link(RegistryKey::local_machine, L"Software\\Suite\\Link", L"\\REGISTRY\\MACHINE\\Software\\Elsewhere");
  EXPECT_EQ(system->registry.remove_tree(RegistryKey::local_machine, L"Software\\Suite"), ports::code::file_not_found);
  std::vector<std::wstring> gone;
  for (const Change& change : recorder->changes()) {
    if (change.kind == "registry-key" && !change.after) gone.push_back(change.path.substr(19));
  }
  EXPECT_EQ(gone,
            (std::vector<std::wstring>{L"Software\\Elsewhere", L"Software\\Elsewhere\\B", L"Software\\Suite\\A"}));
  EXPECT_FALSE(recorder->deletions().at(0).gone);
}

TEST_F(RecorderTest, WhatChangesInAMountedHiveIsToldByItsKeys) {
  write(world, L"C:\\Suite\\u.dat", support::hive_content(L"Kept\\Gone"));
  machine.change([](machine::State& state) {
    state.enabled_privileges.insert({machine::privilege::restore, machine::privilege::backup});
  });
  const auto open = [this](const wchar_t* path) {
    RegistryKey key = RegistryKey::null;
    EXPECT_EQ(system->registry.open(RegistryKey::users, path, 0, all_rights, key), 0u);
    return key;
  };
  ASSERT_EQ(system->registry.load_hive(RegistryKey::users, L"u", L"C:\\Suite\\u.dat"), 0u);
  RegistryKey key = open(L"u\\Kept\\Gone");
  EXPECT_EQ(system->registry.remove(key), 0u);
  system->registry.close(key);
  key = open(L"u\\Kept");
  set(*system, key, L"New", 1);
  EXPECT_EQ(system->registry.unload_hive(RegistryKey::users, L"u"), ports::code::access_denied);
  EXPECT_EQ(recorder->changes().at(1), (Change{"hive", L"HKEY_USERS\\u", std::nullopt, L"mounted"}));
  system->registry.close(key);
  EXPECT_EQ(system->registry.unload_hive(RegistryKey::users, L"u"), 0u);
  const Changes changes = recorder->changes();
  ASSERT_EQ(changes.size(), 3u);
  EXPECT_EQ(changes[0].path, L"C:\\Suite\\u.dat");
  EXPECT_EQ(changes[1], (Change{"registry-key", L"HKEY_USERS\\u\\Kept\\Gone", L"present", std::nullopt}));
  EXPECT_EQ(changes[2], (Change{"registry-value", L"HKEY_USERS\\u\\Kept\\New", std::nullopt, L"REG_DWORD 0x00000001"}));
  EXPECT_EQ(recorder->deletions(), (Deletions{{"registry-key", L"HKEY_USERS\\u\\Kept\\Gone", 0, true}}));
  EXPECT_EQ(recorder->actions(), (std::vector<Action>{{"hive-mounted", L"HKEY_USERS\\u from C:\\Suite\\u.dat"},
                                                      {"hive-unmounted", L"HKEY_USERS\\u"}}));
}

TEST_F(RecorderTest, TasksAndDriverPackagesThatGoAreChanges) {
  machine.change([](machine::State& state) {
    state.scheduled_tasks.tasks = {{L"\\Update", {}}, {L"\\Guarded", {true}}};
    const machine::NodeId folder =
        machine::make_folders(state.files, machine::parse_path(L"C:\\Windows\\INF", L"C:\\").path);
    machine::FileNode inf;
    inf.store = L"C:\\Store\\flt.inf";
    machine::add_node(state.files, folder, L"oem7.inf", inf);
  });
  ASSERT_EQ(system->com.initialize(ports::ComModel::multithreaded), ports::code::ok);
  ports::TaskService service{};
  ports::TaskFolder folder{};
  ASSERT_EQ(system->tasks.create_service(service), ports::code::ok);
  ASSERT_EQ(system->tasks.connect(service), ports::code::ok);
  ASSERT_EQ(system->tasks.folder(service, L"\\", folder), ports::code::ok);
  EXPECT_EQ(system->tasks.remove(folder, L"Update"), ports::code::ok);
  EXPECT_EQ(system->tasks.remove(folder, L"Guarded"), ports::code::as_result(ports::code::access_denied));
  system->tasks.release(folder);
  system->tasks.release(service);
  system->com.uninitialize();
  std::uint32_t size = 0;
  std::wstring location(100, L'\0');
  EXPECT_TRUE(system->drivers.inf_location(L"oem7.inf", location, size));
  machine.change([](machine::State& state) { machine::remove_driver(state, L"oem7.inf"); });
  EXPECT_EQ(recorder->changes(), (Changes{{"driver-package", L"oem7.inf", L"C:\\Store\\flt.inf", std::nullopt},
                                          {"task", L"\\Update", L"Update", std::nullopt}}));
  EXPECT_EQ(recorder->deletions(),
            (Deletions{{"task", L"\\Update", 0, true}, {"task", L"\\Guarded", ports::code::access_denied, false}}));
}

TEST_F(RecorderTest, WhatTheHostDoesForItselfIsUnnotedAndTheLastErrorIsTheCalls) {
  {
    const Recorder::Pause pause(*recorder);
    EXPECT_TRUE(system->files.remove(L"C:\\Suite\\one.txt"));
  }
  system->errors.set_last(77);
  EXPECT_TRUE(system->files.create_folder(L"C:\\Fresh"));
  EXPECT_TRUE(system->files.remove_folder(L"C:\\Fresh"));
  EXPECT_EQ(recorder->changes(), Changes{});
  EXPECT_EQ(system->errors.last(), 77u);
}

TEST_F(RecorderTest, StartedAndEndedProcessesAreActions) {
  ports::CreatedProcess process;
  EXPECT_FALSE(system->processes.create(L"C:\\missing.exe", nullptr, 0, process));
  write(world, L"C:\\Suite\\tool.exe", "MZ");
  machine.change([](machine::State& state) {
    machine::Program program;
    program.image = L"tool.exe";
    program.runs = 1000;
    state.programs.push_back(program);
  });
  ASSERT_TRUE(system->processes.create(L"C:\\Suite\\tool.exe /x", nullptr, 0, process));
  EXPECT_TRUE(system->processes.terminate(process.process, 1));
  system->waits.close(process.thread);
  system->waits.close(process.process);
  EXPECT_EQ(recorder->actions(), (std::vector<Action>{{"process-started", L"C:\\Suite\\tool.exe /x"},
                                                      {"process-ended", L"C:\\Suite\\tool.exe /x"}}));
}

TEST_F(RecorderTest, LogsAreNoChanges) {
  const auto log = [this](const wchar_t* path) {
    const ports::LogStream stream = system->log_streams.open(path, ports::LogMode::append);
    EXPECT_NE(stream, ports::LogStream::null);
    system->log_streams.close(stream);
  };
  for (const wchar_t* name : {L"C:\\ProgramData\\s.900.8.bin", L"C:\\ProgramData\\s.901.kyinstall.v2.bin",
                              L"C:\\ProgramData\\s.902.8.v2.bin", L"C:\\ProgramData\\s9.bin", L"C:\\s.900.8.bin"}) {
    write(world, name, "old");
  }
  log(L"C:\\ProgramData\\s.1000.4.bin");
  log(L"C:\\ProgramData\\s.1000.kyinstall.bin");
  EXPECT_TRUE(system->files.remove(L"C:\\ProgramData\\s.1000.4.bin"));
  EXPECT_TRUE(system->files.remove(L"c:\\programdata\\s.900.8.bin"));
  EXPECT_TRUE(system->files.remove(L"C:\\ProgramData\\s.901.kyinstall.v2.bin"));
  EXPECT_TRUE(world.files.set_attributes(L"C:\\ProgramData\\s.902.8.v2.bin", ports::file_attribute::read_only));
  EXPECT_FALSE(system->files.remove(L"C:\\ProgramData\\s.902.8.v2.bin"));
  const std::vector<LogFile> logs = {{L"C:\\ProgramData\\s.1000.kyinstall.bin", LogFate::written},
                                     {L"c:\\programdata\\s.900.8.bin", LogFate::pruned},
                                     {L"C:\\ProgramData\\s.901.kyinstall.v2.bin", LogFate::pruned},
                                     {L"C:\\ProgramData\\s.902.8.v2.bin", LogFate::remains}};
  EXPECT_EQ(recorder->logs(), logs);
  EXPECT_EQ(recorder->changes(), Changes());
  EXPECT_EQ(recorder->deletions(), Deletions());

  EXPECT_TRUE(system->files.remove(L"C:\\ProgramData\\s9.bin"));
  EXPECT_TRUE(system->files.remove(L"C:\\s.900.8.bin"));
  EXPECT_EQ(recorder->changes().size(), 2U) << "no log by its name, or not where logs lie";
  EXPECT_EQ(recorder->deletions().size(), 2U);
}

}  // namespace
}  // namespace record
