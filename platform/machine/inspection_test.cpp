#include "platform/machine/inspection.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/machine/process_table.h"
#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
namespace right = ports::process_access;
using ports::Handle;
using support::NamedWorld;

constexpr const wchar_t* app = L"C:\\App\\app.exe";
constexpr const wchar_t* other = L"C:\\App\\other.exe";
constexpr std::uint32_t to_look = right::query_information | right::vm_read;

[[nodiscard]] RunningProgram running(std::uint32_t id, const wchar_t* image) {
  RunningProgram program;
  program.id = id;
  program.image = image;
  program.command_line = std::wstring(L"\"") + image + L"\"";
  return program;
}

class MachineInspection : public testing::Test {
 protected:
  MachineInspection() { world.file(app, "MZ").file(other, "MZ").file(L"C:\\App\\dog.exe", "MZ"); }

  RunningProgram& add(std::uint32_t id, const wchar_t* image = app) {
    return world.state.processes.emplace_back(running(id, image));
  }
  void make() {
    machine = world.make();
    inspection = &machine->inspection();
  }

  /// The processes but the two that every system has and this one, as "name id".
  [[nodiscard]] std::vector<std::wstring> listed() {
    std::vector<std::wstring> names;
    const Handle list = inspection->snapshot();
    ports::ProcessRow row;
    for (bool more = inspection->first(list, row); more; more = inspection->next(list, row)) {
      if (row.id > 4 && row.id != machine->processes().current_id()) {
        names.push_back(row.name + L" " + std::to_wstring(row.id));
      }
    }
    EXPECT_EQ(machine->errors().last(), code::no_more_files);
    close(list);
    return names;
  }
  void close(Handle handle) { EXPECT_TRUE(machine->waits().close(handle)); }
  [[nodiscard]] std::wstring path_of(Handle process) {
    std::array<wchar_t, 300> path{};
    return {path.data(), inspection->image_path(process, path)};
  }
  /// The path of the process with an id, as it is mostly asked for; empty where it cannot be opened.
  [[nodiscard]] std::wstring path_of(std::uint32_t id) {
    const Handle process = inspection->open(to_look, id);
    if (process == Handle::null) return {};
    std::wstring path = path_of(process);
    close(process);
    return path;
  }
  [[nodiscard]] std::uint64_t number_at(Handle process, std::uint64_t address, std::size_t size) {
    std::array<std::uint8_t, 8> bytes{};
    EXPECT_TRUE(inspection->read_memory(process, address, std::span(bytes).first(size)));
    std::uint64_t number = 0;
    for (std::size_t i = size; i > 0; --i) number = number << 8 | bytes.at(i - 1);
    return number;
  }
  [[nodiscard]] std::uint64_t parameters_of(Handle process) {
    ports::ProcessBasicInformation information;
    std::uint32_t returned = 0;
    EXPECT_EQ(inspection->basic_information(process, information, returned), ports::status::success);
    EXPECT_EQ(returned, ports::process_basic_information_size);
    return number_at(process, information.environment_block + 0x20, 8);
  }
  /// What has ended so far: "id kind milliseconds".
  [[nodiscard]] std::vector<std::string> ended() {
    constexpr std::array<const char*, 5> kinds = {"itself", "asked", "ended", "terminated", "gave way"};
    std::vector<std::string> lines;
    for (const EndedProcess& end : machine->state().ended) {
      lines.push_back(std::to_string(end.id) + " " + kinds.at(static_cast<std::size_t>(end.kind)) + " " +
                      std::to_string(end.when));
    }
    return lines;
  }

  NamedWorld world;
  std::unique_ptr<Machine> machine;
  Inspection* inspection = nullptr;
};

using Lines = std::vector<std::string>;
using Names = std::vector<std::wstring>;

TEST_F(MachineInspection, ASnapshotListsTheSystemItsProcessesAndThisOne) {
  add(400).parent = 4;
  add(0).name = L"alias.exe";
  world.state.environment.parent = running(0, other);
  world.program(L"C:\\App\\tool.exe", 100, 3);
  make();
  ports::CreatedProcess tool;
  ASSERT_TRUE(machine->processes().create(L"C:\\App\\tool.exe /x", nullptr, 0, tool));
  const std::uint32_t own = machine->processes().current_id();
  const Handle list = inspection->snapshot();
  std::vector<ports::ProcessRow> rows;
  ports::ProcessRow row;
  for (bool more = inspection->first(list, row); more; more = inspection->next(list, row)) rows.push_back(row);
  close(list);
  const std::uint32_t parent = rows.at(4).id;
  const ports::ProcessRow expected[] = {{L"[System Process]", 0, 0},
                                        {L"System", 4, 0},
                                        {L"app.exe", 400, 4},
                                        {L"alias.exe", 404, 0},
                                        {L"other.exe", parent, 0},
                                        {L"kysetup.exe", own, parent},
                                        {L"tool.exe", tool.process_id, own}};
  ASSERT_EQ(rows.size(), std::size(expected));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].name, expected[i].name);
    EXPECT_EQ(rows[i].id, expected[i].id) << i;
    EXPECT_EQ(rows[i].parent_id, expected[i].parent_id) << i;
  }
  EXPECT_EQ(path_of(tool.process_id), L"C:\\App\\tool.exe");
  EXPECT_EQ(path_of(inspection->current()), NamedWorld::setup);
  machine->threads().sleep(100);
  EXPECT_EQ(listed(), (Names{L"app.exe 400", L"alias.exe 404", L"other.exe " + std::to_wstring(parent)}));
  // It is held, so that its id still means it.
  EXPECT_EQ(path_of(tool.process_id), L"");
  EXPECT_EQ(machine->errors().last(), code::access_denied);
  close(tool.process);
  EXPECT_EQ(inspection->open(to_look, tool.process_id), Handle::null);
  EXPECT_EQ(machine->errors().last(), code::invalid_parameter);
}

TEST_F(MachineInspection, AnIdIsRecycledAtItsMomentButNotWhileItIsHeld) {
  const struct {
    GivesWay moment;
    Names after_snapshot;
    std::wstring first_path;
    std::wstring second_path;
  } rows[] = {
      {GivesWay::never, {L"app.exe 400"}, app, app},
      {GivesWay::after_snapshot, {L"app.exe 400"}, other, other},
      {GivesWay::after_image_path, {L"app.exe 400"}, app, other},
  };
  for (const auto& row : rows) {
    world.state.processes.clear();
    add(400).gives_way = row.moment;
    world.state.processes[0].successor = {running(0, other)};
    for (const bool held : {false, true}) {
      make();
      const Handle hold = held ? inspection->open(right::synchronize, 400) : Handle::null;
      EXPECT_EQ(listed(), row.after_snapshot);
      EXPECT_EQ(path_of(400), held ? app : row.first_path);
      EXPECT_EQ(path_of(400), held ? app : row.second_path);
      if (!held) continue;
      close(hold);
      EXPECT_EQ(path_of(400), row.second_path);
      EXPECT_EQ(ended().size(), row.moment == GivesWay::never ? 0u : 1u);
    }
  }
  world.state.processes[0].gives_way = GivesWay::after_open;
  make();
  const Handle first = inspection->open(right::terminate, 400);
  EXPECT_EQ(path_of(400), app);
  close(first);
  EXPECT_EQ(path_of(400), other);
  EXPECT_EQ(listed(), Names{L"other.exe 400"});
  EXPECT_TRUE(machine->files().remove(app));
  EXPECT_FALSE(machine->files().remove(other));
}

TEST_F(MachineInspection, ProcessesThatAreAskedCloseByTheirTemper) {
  add(400).temper.closes_after = 700;
  add(404).temper.hangs = true;
  add(408).ends_after = 200;
  add(412, other);
  Program quit;
  quit.image = app;
  quit.arguments = L"/quit";
  quit.effects = {{EffectKind::ask_to_close, app, {}, {}, {}}, {EffectKind::end_process, L"OTHER.exe", {}, {}, {}}};
  Program stay;
  stay.image = app;
  stay.stays = true;
  world.state.programs = {stay, quit};
  make();
  const Handle hanging = inspection->open(right::synchronize | right::terminate, 404);
  const Handle closing = inspection->open(right::synchronize, 400);
  ports::CreatedProcess plain;
  ports::CreatedProcess asking;
  ASSERT_TRUE(machine->processes().create(app, nullptr, 0, plain));
  machine->threads().sleep(50);
  ASSERT_TRUE(machine->processes().create(L"C:\\App\\app.exe /quit", nullptr, 0, asking));
  const Handle both[] = {hanging, closing};
  EXPECT_EQ(machine->waits().wait(both, false, 10'000), 1u);
  EXPECT_EQ(machine->waits().wait(std::span(both).first(1), true, 500), ports::wait_result::timeout);
  EXPECT_TRUE(machine->processes().terminate(hanging, 9));
  EXPECT_EQ(machine->waits().wait(both, true, ports::infinite), ports::wait_result::object_0);
  const std::string started = std::to_string(plain.process_id);
  EXPECT_EQ(ended(), (Lines{std::to_string(asking.process_id) + " itself 50", "412 ended 50", "408 asked 50",
                            started + " asked 50", "400 asked 750", "404 terminated 1250"}));
}

TEST_F(MachineInspection, WhatIsBroughtBackStartsAgain) {
  add(400).temper.spawns = L"\"C:\\App\\dog.exe\" /watch";
  Program dog;
  dog.image = L"dog.exe";
  dog.runs = 300;
  dog.temper.spawns = app;
  Program stay;
  stay.image = app;
  stay.stays = true;
  world.state.programs = {dog, stay};
  make();
  const Handle process = inspection->open(right::terminate, 400);
  EXPECT_TRUE(machine->processes().terminate(process, 1));
  machine->threads().sleep(1);
  EXPECT_EQ(listed().at(0).substr(0, 7), L"dog.exe");
  machine->threads().sleep(300);
  EXPECT_EQ(listed().at(0).substr(0, 7), L"app.exe");
  const StartedProcesses started = machine->state().started;
  ASSERT_EQ(started.size(), 2u);
  EXPECT_EQ(started[0].parent, 400u);
  EXPECT_EQ(started[1].parent, started[0].id);
}

TEST_F(MachineInspection, AProgramThatBringsItselfBackForEverEndsToo) {
  world.program(L"C:\\App\\again.exe", 0, 0);
  world.state.programs[0].temper.spawns = L"C:\\App\\again.exe";
  make();
  ports::CreatedProcess process;
  ASSERT_TRUE(machine->processes().create(L"C:\\App\\again.exe", nullptr, 0, process));
  machine->threads().sleep(1);
  EXPECT_EQ(machine->state().started.size(), 1001u);
}

TEST_F(MachineInspection, RightsAreGivenAndAskedFor) {
  add(400).temper.refuses = right::terminate | right::query_information;
  add(404).temper.needs_debug_privilege = true;
  add(408).temper.image_unreadable = true;
  add(412).temper.parameters_unreadable = true;
  world.state.environment.elevated = true;
  make();
  const struct {
    std::uint32_t access;
    std::uint32_t id;
    ports::ErrorCode error;
  } rows[] = {
      {right::terminate | right::synchronize, 400, code::access_denied},
      {to_look, 400, code::access_denied},
      {right::synchronize, 400, code::success},
      {right::query_limited_information, 400, code::success},
      {right::synchronize, 404, code::access_denied},
      {right::query_limited_information, 4, code::access_denied},
      {to_look, 0, code::invalid_parameter},
      {to_look, 1000, code::invalid_parameter},
  };
  for (const auto& row : rows) {
    const Handle process = inspection->open(row.access, row.id);
    EXPECT_EQ(process == Handle::null ? machine->errors().last() : code::success, row.error) << &row - rows;
    if (process != Handle::null) close(process);
  }
  machine->change([](State& state) { state.enabled_privileges.insert(privilege::debug); });
  EXPECT_EQ(path_of(404), app);
  EXPECT_EQ(path_of(408), L"");
  EXPECT_EQ(machine->errors().last(), code::access_denied);

  const Handle weak = inspection->open(right::query_limited_information, 412);
  EXPECT_EQ(machine->waits().wait(std::span(&weak, 1), true, 0), ports::wait_result::failed);
  EXPECT_EQ(machine->errors().last(), code::access_denied);
  close(weak);
  const Handle strong = inspection->open(to_look, 412);
  EXPECT_EQ(path_of(strong), app);
  EXPECT_FALSE(inspection->read_memory(strong, 0, {}));
  EXPECT_EQ(machine->errors().last(), code::partial_copy);
  close(strong);
  EXPECT_TRUE(machine->handles().open_by_kind().empty());
}

TEST_F(MachineInspection, ALengthHas16BitsAndEachProcessItsOwnAddresses) {
  add(404).command_line = std::wstring(40'000, L'a');
  add(408).command_line.clear();
  make();
  const std::uint64_t text = number_at(inspection->current(), parameters_of(inspection->current()) + 0x78, 8);
  const struct {
    std::uint32_t id;
    std::uint64_t length;
  } rows[] = {{404, 80'000 - 65'536}, {408, 0}};
  for (const auto& row : rows) {
    const Handle another = inspection->open(to_look, row.id);
    EXPECT_EQ(number_at(another, parameters_of(another) + 0x70, 2), row.length);
    std::array<std::uint8_t, 1> byte{};
    EXPECT_FALSE(inspection->read_memory(another, text, byte)) << "an address of another process";
    EXPECT_EQ(machine->errors().last(), code::partial_copy);
    close(another);
  }
  EXPECT_EQ(number_at(inspection->current(), parameters_of(inspection->current()) + 0x70, 2),
            2 * world.state.environment.command_line.size());
}

TEST_F(MachineInspection, WhatStillRunsRunsOnInTheNextMachine) {
  add(400).ends_after = 1000;
  add(404).temper.closes_after = 500;
  world.state.processes[1].gives_way = GivesWay::after_open;
  world.state.processes[1].successor = {running(0, other)};
  add(408).ends_after = 10;
  world.program(L"C:\\App\\tool.exe", 5000, 0);
  make();
  ports::CreatedProcess tool;
  ASSERT_TRUE(machine->processes().create(L"C:\\App\\tool.exe /x", nullptr, 0, tool));
  machine->threads().sleep(300);
  EXPECT_TRUE(machine->files().move(app, L"C:\\App\\moved.exe", 0));
  const auto next = Machine::from_json(machine->to_json(), "next.json");
  const RunningPrograms left = next->state().processes;
  ASSERT_EQ(left.size(), 3u);
  EXPECT_EQ(left[0].ends_after, 700u);
  EXPECT_EQ(left[0].image, L"C:\\App\\moved.exe");
  EXPECT_EQ(left[1].temper, world.state.processes[1].temper);
  EXPECT_EQ(left[1].successor.at(0).image, other);
  EXPECT_EQ(left[2].id, tool.process_id);
  EXPECT_EQ(left[2].command_line, L"C:\\App\\tool.exe /x");
  EXPECT_EQ(left[2].ends_after, 4700u);
  EXPECT_GT(next->processes().current_id(), tool.process_id);
  EXPECT_FALSE(next->files().remove(L"C:\\App\\tool.exe"));
}

}  // namespace
}  // namespace machine
