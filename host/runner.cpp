#include "host/runner.h"

#include <exception>
#include <optional>
#include <string_view>
#include <utility>

#include "host/store.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "platform/ports/termination.h"

namespace host {

namespace {

constexpr std::string_view return_code = ky::keys::int_ReturnCode.name;

/// One run; the functions below are its steps.
class Run {
 public:
  Run(const Program& program, Store& store, RunObserver& observer)
      : program_(program), store_(store), observer_(observer) {}

  /// Runs the command at `position` and finds the next one; nothing where the run is over, as `result` then tells.
  [[nodiscard]] std::optional<std::size_t> step(std::size_t position);

  RunResult result;

 private:
  /// True where the run has to stop behind the command.
  [[nodiscard]] bool execute(ky::CInstallCommand& command, StepOutcome& outcome);
  void keep_result(const ky::CInstallCommand& command, std::uint32_t code);
  [[nodiscard]] bool has_to_stop(std::uint32_t code, std::uint64_t times_put_before) const;
  void fail(RunEnd end, std::string reason);

  const Program& program_;
  Store& store_;
  RunObserver& observer_;
};

bool Run::execute(ky::CInstallCommand& command, StepOutcome& outcome) {
  bool stop = false;
  outcome.run = command.CheckExecCondition();
  if (outcome.run) {
    const std::uint64_t times_put_before = store_.times_put(return_code);
    outcome.result = command.Execute(0, 0);
    stop = has_to_stop(outcome.result, times_put_before);
    keep_result(command, outcome.result);
  }
  outcome.next = command.GetNextIndex();
  return stop;
}

void Run::keep_result(const ky::CInstallCommand& command, std::uint32_t code) {
  if (command.errVar == nullptr) return;
  store_.put(ky::IntKey(command.errVar.get()).name, ky::ToStored(static_cast<std::int32_t>(code)));
}

bool Run::has_to_stop(std::uint32_t code, std::uint64_t times_put_before) const {
  return code != 0 && store_.times_put(return_code) != times_put_before && store_.get(return_code) != 0;
}

void Run::fail(RunEnd end, std::string reason) {
  result.end = end;
  result.reason = std::move(reason);
  if (store_.get(return_code) == 0) store_.put(return_code, ports::code::internal_error);
}

std::optional<std::size_t> Run::step(std::size_t position) {
  result.position = position;
  const ProgramStep& at = program_.steps()[position];
  observer_.before(at);
  StepOutcome outcome;
  bool stop = false;
  try {
    stop = execute(*at.command, outcome);
  } catch (const std::exception& error) {
    fail(RunEnd::exception, error.what());
    return std::nullopt;
  } catch (...) {
    fail(RunEnd::exception, "an exception of unknown kind");
    return std::nullopt;
  }
  observer_.after(at, outcome);

  if (stop) {
    result.end = RunEnd::stopped;
    return std::nullopt;
  }
  if (outcome.next > program_.last_index()) return std::nullopt;
  const std::optional<std::size_t> next = program_.find(outcome.next);
  if (!next.has_value()) fail(RunEnd::lost, "no command has index " + std::to_string(outcome.next));
  return next;
}

}  // namespace

RunResult run(const Program& program, Store& store, ports::Termination& termination, RunObserver& observer) {
  Run run(program, store, observer);
  std::optional<std::size_t> position;
  if (!program.steps().empty()) position = 0;
  while (position.has_value()) {
    termination.step();
    position = run.step(*position);
  }
  return run.result;
}

}  // namespace host
