#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>

#include "platform/faults/faulty_system.h"
#include "platform/ports/build.h"
#include "tests/support/named_world.h"

namespace support {

/// For the logic below the commands: a named world that is laid out, then started and bound. Calls fail by plan, some
/// ports may be fakes, and a test must leave no handle behind.
class BoundWorld : public testing::Test {
 protected:
  using Operation = faults::Operation;

  /// May be called again, for a new machine of the same layout. Fakes must outlive the test's body.
  template <class... Fakes>
  void start(Fakes&... fakes) {
    stop();
    machine = world.make();
    engines = ports::make_engines(machine->errors());
    system.emplace(ports::with(machine->system(*engines), fakes...));
    faulty.emplace(*system);
    ports::bind(faulty->system());
    open_at_start = machine->handles().open_by_kind();
  }
  void TearDown() override { stop(); }

  NamedWorld world;
  std::unique_ptr<machine::Machine> machine;
  std::optional<ports::System> system;  // behind the faults
  std::optional<faults::FaultySystem> faulty;

 private:
  void stop() {
    if (machine == nullptr) return;
    EXPECT_EQ(machine->handles().open_by_kind(), open_at_start) << "a handle was left open";
    ports::unbind();
    faulty.reset();
    system.reset();
    engines.reset();
    machine.reset();
  }

  std::unique_ptr<ports::Engines> engines;
  std::map<machine::ObjectKind, std::size_t> open_at_start;
};

}  // namespace support
