#include "tests/attacks/edition_run.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "host/factories.h"
#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/ports/build.h"
#include "platform/record/recorder.h"
#include "resources/edition.h"
#include "tools/ky/rehearse/plain_log.h"

namespace attacks {

namespace {

std::vector<std::uint8_t> bytes_of(std::string_view text) {
  return {text.begin(), text.end()};
}

const char* told(host::RunEnd end) {
  switch (end) {
    case host::RunEnd::finished:
      return "finished";
    case host::RunEnd::stopped:
      return "ended by a command";
    case host::RunEnd::exception:
      return "ended by an exception";
    case host::RunEnd::lost:
      return "lost";
  }
  return "?";
}

/// Commands that are meant to run once keep their guard, and so does one that finds no process.
bool keeps_guard(const std::string& name) {
  return name == "CrashHandler" || name == "Logger" || name == "CloseProcess";
}

/// Runs the script and releases all; any other command's guard that is still held is a fault.
std::string run_session(const ports::System& system) {
  class Nobody final : public host::RunObserver {};
  const host::TableFactories library(ky::library::factories());
  host::Session session(system, library);
  if (!session.start(host::built_in_script_key()).empty()) return "refused at the start";
  std::size_t log_bytes = 0;
  ky::ILoggerApi* const log =
      new rehearsal::PlainLog(system.clock, [&log_bytes](std::string_view line) { log_bytes += line.size(); });
  session.store().put(ky::keys::SelfFree_LoggerApi.name, ky::ToStored(log));
  if (!session.load(edition::script()).empty()) return "refused by the loader";
  Nobody nobody;
  std::string ending = told(session.run(nobody).end);
  for (const host::ProgramStep& step : session.program().steps()) {
    if (step.command->GuardHeld() && !keeps_guard(step.name)) ending += " !! guard held: " + step.name;
  }
  // The script's own log takes its place, and nobody releases what another log replaced.
  const bool replaced = session.store().get(ky::keys::SelfFree_LoggerApi.name) != ky::ToStored(log);
  session.release();
  if (replaced) ky::Release(log);
  return ending + ", return code " + (session.return_code() == 0 ? "0" : "not 0");
}

/// A failed closing leaves its handle open; any other handle has to be closed.
std::uint64_t closings_failed(const faults::FaultySystem& faulty) {
  std::uint64_t failed = 0;
  for (const faults::Contract& row : faults::contracts()) {
    // Modules are no handles: what the machine counts open does not hold them.
    if (row.operation == faults::Operation::modules_free) continue;
    if (faults::gives_back(row.operation)) failed += faulty.failed(row.operation);
  }
  return failed;
}

/// The handles of processes that are waited for together stay open for good. Their paths were read; that of the
/// straggler, whose handle is closed, never is.
std::size_t meant_to_stay_open(const std::vector<record::SeenProcess>& processes) {
  return static_cast<std::size_t>(std::count_if(processes.begin(), processes.end(), [](const auto& process) {
    return process.opened && !process.let_go && !process.path.empty();
  }));
}

/// What was ended of others than the suite; programs that end by themselves do not count.
std::string strangers_ended(const machine::EndedProcesses& ended) {
  std::string told;
  for (const machine::EndedProcess& process : ended) {
    const bool by_itself = process.kind == machine::EndKind::by_itself;
    if (by_itself || process.image.starts_with(L"C:\\Program Files\\Tavrine\\")) continue;
    told += " !! ended what is not its own: " + base::strings::to_utf8(process.image);
  }
  return told;
}

std::size_t open_handles(machine::Machine& machine) {
  std::size_t open = machine.registry().open_keys();
  for (const auto& [kind, count] : machine.handles().open_by_kind()) open += count;
  return open;
}

}  // namespace

std::string EditionRun::once(const Plan& before, const Stopped& stopped, const Look& after) const {
  machine::Options options;
  options.on_stop = stopped;
  options.max_steps = 5'000;  // no fault may keep the script going in circles
  machine::Machine machine(machine_, options);
  machine.add_resource(edition::document_type, edition::script_id, bytes_of(edition::script()));
  machine.add_resource(edition::document_type, edition::configuration_id, bytes_of(edition::configuration()));
  const std::unique_ptr<ports::Engines> engines = ports::make_engines(machine.errors());
  const record::Recorder recorder(machine.system(*engines));
  faults::FaultySystem faulty(recorder.system());
  const std::size_t open_before = open_handles(machine);
  before(faulty);
  std::string ending = run_session(faulty.system());
  const std::size_t open_after = open_handles(machine);
  if (open_after != open_before + closings_failed(faulty) + meant_to_stay_open(recorder.processes())) {
    ending += " !! handles left open: " + std::to_string(open_after - open_before);
  }
  ending += strangers_ended(machine.state().ended);
  return ending + after(faulty, recorder.changes());
}

}  // namespace attacks
