#include "platform/machine/machine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "platform/machine/document.h"
#include "platform/ports/codes.h"
#include "tests/support/named_world.h"

namespace machine {
namespace {

namespace code = ports::code;
using support::NamedWorld;

[[nodiscard]] Options telling(std::uint64_t max_steps = 1000) {
  Options options;
  options.max_steps = max_steps;
  options.on_stop = [](const ports::StopReason& reason) {
    std::cerr << "kind " << static_cast<std::uint32_t>(reason.kind) << ": "
              << std::string(reason.text.begin(), reason.text.end()) << std::flush;
  };
  return options;
}

struct Loud {
  ~Loud() { std::cerr << "unwound" << std::flush; }
};

TEST(MachineDeathTest, TheDoorHandsOverTheReasonAndUnwindsNothing) {
  EXPECT_EXIT(
      {
        const Loud loud;
        Machine machine(telling());
        machine.termination().stop({ports::StopKind::assertion, L"why"});
      },
      testing::ExitedWithCode(1), "^kind 2: why$");
}

TEST(MachineDeathTest, StepsAndWaitsWithoutEndStopTheRun) {
  EXPECT_EXIT(
      {
        Machine machine(telling(10));
        for (int i = 0; i < 11; ++i) machine.termination().step();
      },
      testing::ExitedWithCode(1), "^kind 4: the limit of 10 steps is reached$");
  EXPECT_EXIT(
      {
        Machine machine(telling());
        const ports::Handle never[] = {machine.waits().create_event(true, false, L"never")};
        static_cast<void>(machine.waits().wait(never, true, ports::infinite));
      },
      testing::ExitedWithCode(1), "event 'never' without limit");
}

TEST(Machine, ResourcesAreTheLibrarysAlone) {
  const auto machine = NamedWorld().make();
  Resources& resources = machine->resources();
  machine->add_resource(L"XML", 5, {1, 2, 3});
  machine->add_resource(L"XML", 6, {});
  EXPECT_EQ(resources.size(Modules::library, resources.find(Modules::library, 5, L"xml")), 3u);
  const ports::ResourcePlace empty = resources.find(Modules::library, 6, L"XML");
  EXPECT_NE(resources.lock(resources.load(Modules::library, empty)), nullptr);
  EXPECT_EQ(resources.find(Modules::program, 5, L"XML"), ports::ResourcePlace::null);
  EXPECT_EQ(machine->errors().last(), code::resource_data_not_found);
}

TEST(Machine, ALoadedModuleIsInUse) {
  const auto machine = NamedWorld().file(L"C:\\m.dll", "MZ").file(L"C:\\text.dll", "text").make();
  Modules& modules = machine->modules();
  const ports::Module loaded = modules.load(L"C:\\m.dll", 0);
  EXPECT_EQ(modules.load(L"C:\\m", 0), loaded);
  EXPECT_EQ(modules.file_name(loaded), L"C:\\m.dll");
  EXPECT_TRUE(modules.free(loaded));
  EXPECT_FALSE(machine->files().remove(L"C:\\m.dll"));
  EXPECT_TRUE(modules.free(loaded));
  EXPECT_TRUE(machine->files().remove(L"C:\\m.dll"));
  EXPECT_EQ(modules.load(L"C:\\text.dll", 0), ports::Module::null);
  EXPECT_EQ(machine->errors().last(), code::bad_exe_format);
  EXPECT_EQ(modules.load(L"absent", 0), ports::Module::null);
  EXPECT_EQ(machine->errors().last(), code::module_not_found);
}

TEST(Machine, ACriticalSectionLivesInItsBlock) {
  const auto machine = NamedWorld().make();
  alignas(void*) std::byte blocks[80] = {};
  Winapi& winapi = machine->winapi();
  winapi.InitializeCriticalSection(blocks);
  winapi.EnterCriticalSection(blocks);
  winapi.EnterCriticalSection(blocks);
  winapi.LeaveCriticalSection(blocks);
  winapi.LeaveCriticalSection(blocks);
  winapi.DeleteCriticalSection(blocks);
  for (std::size_t i = 40; i < sizeof(blocks); ++i) EXPECT_EQ(blocks[i], std::byte{0});
}

TEST(Machine, TheSamplesAreMachinesAndComeBackTheSame) {
  const std::filesystem::path here = std::filesystem::path(__FILE__).parent_path();
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(here / "../../samples/machines")) {
    if (entry.path().extension() != ".json") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string written = write_document(read_document(text, entry.path().string()));
    EXPECT_EQ(write_document(read_document(written, "written")), written);
    ++count;
  }
  EXPECT_GE(count, 2u);
}

}  // namespace
}  // namespace machine
