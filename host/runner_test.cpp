#include "host/runner.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/store.h"
#include "installer/desktop/commands/base/heap_string.h"
#include "ky/keys.h"
#include "platform/ports/termination.h"

namespace {

class CountingTermination final : public ports::Termination {
 public:
  [[noreturn]] void stop(const ports::StopReason&) override { std::abort(); }
  void step() override { ++steps; }
  int steps = 0;
};

/// A command that does what the test says, without the log and the store of a process.
class ScriptedCommand final : public ky::Destroyable<ScriptedCommand, ky::CInstallCommand> {
 public:
  explicit ScriptedCommand(std::function<std::uint32_t(ScriptedCommand&)> work) : work_(std::move(work)) {}
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override {
    EXPECT_EQ(first, 0U);
    EXPECT_EQ(second, 0U);
    return work_(*this);
  }
  std::int32_t GetNextIndex() override { return next >= 0 ? next : index + 1; }
  bool CheckExecCondition() override { return !skipped; }
  bool skipped = false;

 private:
  std::function<std::uint32_t(ScriptedCommand&)> work_;
};

class RunnerTest : public testing::Test, public host::RunObserver {
 protected:
  ScriptedCommand& add(
      std::int32_t index, std::function<std::uint32_t(ScriptedCommand&)> work = [](ScriptedCommand&) { return 0U; }) {
    auto* const command = new ScriptedCommand(std::move(work));
    command->index = index;
    EXPECT_TRUE(program.add({"C" + std::to_string(index), index, host::CommandOwner(command)}));
    return *command;
  }
  host::RunResult run() { return host::run(program, store, termination, *this); }
  std::int32_t integer(const char* key) const { return ky::FromStored<std::int32_t>(store.get(key)); }

  void before(const host::ProgramStep& step) override { trace += '>' + std::to_string(step.index); }
  void after(const host::ProgramStep&, const host::StepOutcome& outcome) override {
    trace += outcome.run ? "=" + std::to_string(outcome.result) : "-";
  }

  host::Program program;
  host::Store store;
  CountingTermination termination;
  std::string trace;
};

TEST_F(RunnerTest, FollowsTheIndexesFromTheFirstElementToTheEnd) {
  add(4).next = 1;
  add(1);
  add(2).skipped = true;
  add(3).next = 9;
  EXPECT_EQ(run().end, host::RunEnd::finished);
  EXPECT_EQ(trace, ">4=0>1=0>2->3=0");
  EXPECT_EQ(termination.steps, 4);
  EXPECT_EQ(integer("int_ReturnCode"), 0);
}

TEST_F(RunnerTest, AScriptWithoutCommandsIsOverAtOnce) {
  EXPECT_EQ(run().end, host::RunEnd::finished);
}

TEST_F(RunnerTest, AFailureGoesToErrVarAndTheRunGoesOn) {
  store.put("int_ReturnCode", 3010);
  add(0, [](ScriptedCommand&) { return 5U; }).errVar = ky::DuplicateString<char>("Failure");
  add(1).errVar = ky::DuplicateString<char>("Success");
  add(2, [](ScriptedCommand&) { return 32U; });
  store.put("int_Success", 77);
  EXPECT_EQ(run().end, host::RunEnd::finished);
  EXPECT_EQ(trace, ">0=5>1=0>2=32");
  EXPECT_EQ(integer("int_Failure"), 5);
  EXPECT_EQ(integer("int_Success"), 0) << "a success is told too";
  EXPECT_EQ(integer("int_ReturnCode"), 3010) << "a code that was there before stops nothing";
}

TEST_F(RunnerTest, AFailureThatPutsTheReturnCodeStopsTheRun) {
  const auto with_code = [this](std::uint32_t result, std::int32_t code) {
    return [this, result, code](ScriptedCommand&) {
      store.put("int_ReturnCode", ky::ToStored(code));
      return result;
    };
  };
  add(0, with_code(0, 1)).errVar = ky::DuplicateString<char>("A");
  add(1, with_code(1359, 0));
  add(2, [](ScriptedCommand&) { return 8U; }).errVar = ky::DuplicateString<char>("ReturnCode");
  add(3, with_code(1359, 1314)).errVar = ky::DuplicateString<char>("B");
  add(4);
  const host::RunResult result = run();
  EXPECT_EQ(result.end, host::RunEnd::stopped);
  EXPECT_EQ(result.position, 3U);
  EXPECT_EQ(trace, ">0=0>1=1359>2=8>3=1359");
  EXPECT_EQ(integer("int_B"), 1359);
  EXPECT_EQ(integer("int_ReturnCode"), 1314);
}

TEST_F(RunnerTest, AnExceptionEndsTheRunAsAFailure) {
  add(0);
  add(1, [](ScriptedCommand&) -> std::uint32_t { throw std::runtime_error("out of luck"); });
  add(2);
  const host::RunResult result = run();
  EXPECT_EQ(result.end, host::RunEnd::exception);
  EXPECT_EQ(result.position, 1U);
  EXPECT_EQ(result.reason, "out of luck");
  EXPECT_EQ(trace, ">0=0>1");
  EXPECT_EQ(integer("int_ReturnCode"), 1359);
}

TEST_F(RunnerTest, ACommandThatSendsTheRunNowhereEndsItAsAFailure) {
  add(0, [](ScriptedCommand& self) {
    self.next = 5;
    return 0U;
  });
  add(9);
  store.put("int_ReturnCode", 2);
  const host::RunResult result = run();
  EXPECT_EQ(result.end, host::RunEnd::lost);
  EXPECT_EQ(result.reason, "no command has index 5");
  EXPECT_EQ(integer("int_ReturnCode"), 2) << "a code that is there already stays";
}

}  // namespace
