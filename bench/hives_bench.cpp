#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>

#include "bench/desk_world.h"
#include "host/script/program.h"
#include "ky/install_command.h"
#include "platform/ports/registry.h"
#include "tests/support/user_profiles.h"

namespace bench {
namespace {

constexpr std::size_t many = 1'000;
constexpr std::size_t tenth = many / 10;

void run(DeskWorld& world, const char* stem) {
  const host::CommandOwner command(world.library.find(stem)());
  if (command->Execute(0, 0) != 0) std::abort();
}

/// Mounts the hives of so many users, none of them logged on, and unmounts them again.
void mount(benchmark::State& state, std::size_t users) {
  support::NamedWorld layout;
  support::add_profiles(layout, users);
  DeskWorld world(layout.state);
  const auto keys = [&world] {
    ports::KeyInformation information;
    if (world.system.registry.information(ports::RegistryKey::users, information) != 0) std::abort();
    return information.subkeys;
  };
  const std::uint32_t before = keys();
  for (auto _ : state) {
    run(world, "RegLoadAllUserHives");
    if (keys() != before + users) std::abort();
    run(world, "RegUnloadPreviouslyLoadedUserHives");
    if (keys() != before) std::abort();
  }
}
void mount_users(benchmark::State& state) {
  mount(state, many);
}
BENCHMARK(mount_users)->Unit(benchmark::kMicrosecond);
void mount_tenth(benchmark::State& state) {
  mount(state, tenth);
}
BENCHMARK(mount_tenth)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
