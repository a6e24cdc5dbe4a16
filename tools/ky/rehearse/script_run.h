#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/runner.h"
#include "host/script/script_fault.h"
#include "host/script/script_key.h"
#include "host/session.h"
#include "platform/ports/system.h"
#include "platform/ports/termination.h"
#include "platform/record/recorder.h"
#include "tools/ky/receipt/target_book.h"
#include "tools/ky/rehearse/outcome.h"
#include "tools/ky/rehearse/plain_log.h"

namespace rehearsal {

/// One run of one script in one world, with everything noted: what `ky rehearse`, `ky run` and the tests of whole runs
/// share. One at a time in a process.
class ScriptRun final : private host::RunObserver {
 public:
  /// Called before each command with its number in the run, from 1, and its name.
  using Progress = std::function<void(std::size_t number, const std::string& name)>;

  /// `world` is bound for the life of this object and must outlive it.
  explicit ScriptRun(const ports::System& world);
  ~ScriptRun() override;

  /// Puts the host's keys, and a clear-text log where `log` is set; loads and checks the enciphered script. Gives the
  /// reasons not to run, one line each.
  [[nodiscard]] std::vector<std::string> prepare(std::string_view enciphered, const host::ScriptKey& key,
                                                 PlainLog::Sink log);

  /// Runs the script and releases everything it left in the store.
  [[nodiscard]] Outcome run(const Progress& progress);

  /// For the moment in which the process stops: what was seen so far, and the command that it stopped in.
  [[nodiscard]] Outcome stopped(const ports::StopReason& reason) const;

  [[nodiscard]] const host::Program& program() const { return session_->program(); }

 private:
  void before(const host::ProgramStep& step) override;
  void after(const host::ProgramStep& step, const host::StepOutcome& outcome) override;
  [[nodiscard]] receipt::Variables variables() const;
  [[nodiscard]] Outcome seen_so_far() const;
  void gather_changes(Outcome& outcome) const;

  record::Recorder recorder_;
  host::TableFactories library_;
  std::unique_ptr<host::Session> session_;
  /// Until the script brings up a log of its own, which takes its place in the store.
  ky::ILoggerApi* plain_log_ = nullptr;
  Progress progress_;
  /// The keys that come from the clock, whatever the run.
  std::set<std::string> clock_keys_;
  std::vector<CommandRun> commands_;
  receipt::TargetBook targets_;
  /// What deleting commands were asked for, with their results: for what nothing was there to show it.
  std::vector<record::Deletion> asked_for_;
  /// The command at hand; its outcome is not known yet.
  CommandRun current_;
};

}  // namespace rehearsal
