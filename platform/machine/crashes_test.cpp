#include "platform/machine/crashes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "platform/machine/machine.h"
#include "platform/ports/files.h"
#include "tests/support/thread_body.h"

namespace machine {
namespace {

/// Dumps in the way of the filter of the product: on a thread of its own, which it waits for.
class DumpingFilter final : public ports::CrashFilter {
 public:
  explicit DumpingFilter(Machine& world) : world_(world) {}

  std::int32_t on_crash(ports::ExceptionPointers* exception) override {
    const auto dump = [this, exception] {
      const ports::Handle file = world_.files().open(L"C:\\a.dmp", 0x1F01FF, 0, ports::Disposition::create_always, 0);
      EXPECT_TRUE(world_.crashes().write_dump(file, ports::DumpKind::full_memory, exception));
      world_.waits().close(file);
    };
    std::uint32_t id = 0;
    const ports::Handle thread = world_.threads().start(std::make_unique<support::Body>(dump), id);
    EXPECT_EQ(world_.waits().wait({&thread, 1}, false, ports::infinite), ports::wait_result::object_0);
    world_.waits().close(thread);
    return 1;
  }

 private:
  Machine& world_;
};

void stop(ports::StopKind kind) {
  Machine* world = nullptr;
  Options options;
  options.on_stop = [&world](const ports::StopReason&) {
    const State state = world->state();
    const NodeId root = state.files.volumes.at(L"C:").root;
    const NodeId dump = child(state.files, root, L"a.dmp");
    const std::vector<std::uint8_t> bytes =
        dump == 0 ? std::vector<std::uint8_t>() : state.files.nodes.at(dump).bytes.all();
    const std::string text(bytes.begin(), bytes.end());
    std::fprintf(stderr, "dump [%s] [%s]", text.substr(0, 4).c_str(), text.size() > 44 ? text.substr(44).c_str() : "");
  };
  Machine machine(std::move(options));
  world = &machine;
  DumpingFilter filter(machine);
  EXPECT_FALSE(machine.crashes().set_filter(filter));
  EXPECT_TRUE(machine.crashes().set_filter(filter));
  machine.termination().stop({kind, L"the reason"});
}

TEST(Crashes, AFaultIsDumpedBeforeTheRehearsalEnds) {
  for (const auto kind : {ports::StopKind::invalid_parameter, ports::StopKind::null_value, ports::StopKind::assertion,
                          ports::StopKind::processor_fault}) {
    EXPECT_EXIT(stop(kind), testing::ExitedWithCode(1), "dump \\[MDMP\\] \\[the reason\\]");
  }
  for (const auto kind : {ports::StopKind::step_limit, ports::StopKind::deadlock}) {
    EXPECT_EXIT(stop(kind), testing::ExitedWithCode(1), "dump \\[\\] \\[\\]");
  }
}

}  // namespace
}  // namespace machine
