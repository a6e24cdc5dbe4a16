#include "tools/ky/rehearse/rehearse.h"

#include <cstdlib>
#include <memory>
#include <ostream>

#include "diagnostics/reader/session_key.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"
#include "platform/machine/document.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "resources/edition.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/receipt/settle.h"
#include "tools/ky/rehearse/account.h"
#include "tools/ky/rehearse/noting_cng.h"
#include "tools/ky/rehearse/report.h"
#include "tools/ky/rehearse/run_and_report.h"
#include "tools/ky/rehearse/run_logs.h"
#include "tools/ky/rehearse/script_run.h"
#include "tools/ky/rehearse/script_source.h"
#include "tools/ky/rehearse/switched_environment.h"

namespace workbench {

namespace {

constexpr std::uintmax_t machine_size_limit = 64u << 20;

machine::State load_state(const RehearseOptions& options) {
  std::string text;
  if (const std::string reason = desk::read_file(options.machine, machine_size_limit, text); !reason.empty()) {
    throw BadInput(reason);
  }
  try {
    return machine::read_document(text, options.machine);
  } catch (const machine::DocumentError& error) {
    throw BadInput(error.what());
  }
}

/// Whatever the run takes in is not written over.
void check_receipt(const RehearseOptions& options) {
  if (!options.receipt) return;
  for (const std::string& input : {options.machine, options.script.value_or(""), options.script_key.value_or("")}) {
    if (desk::are_same(*options.receipt, input)) {
      throw BadInput(*options.receipt + ": the receipt cannot take the place of what is rehearsed");
    }
  }
}

machine::Options machine_options(const RehearseOptions& options, machine::StopHandler on_stop) {
  machine::Options how;
  how.max_steps = options.max_steps;
  how.on_stop = std::move(on_stop);
  how.log_folder = options.out;
  return how;
}

void add_document(machine::Machine& world, std::uint16_t id, std::string_view bytes) {
  world.add_resource(edition::document_type, id, {bytes.begin(), bytes.end()});
}

/// The run's log files as they lie in the folder.
std::vector<std::string> written_through(const rehearsal::Outcome& outcome, rehearsal::OutputFolder& folder) {
  std::vector<std::string> files;
  for (const std::string& log : rehearsal::own_logs(outcome)) {
    const std::string name = rehearsal::file_name_of(log);
    const std::string file = desk::join(folder.path(), name);
    if (!desk::exists(file)) continue;
    files.push_back(file);
    folder.add(name);
  }
  return files;
}

}  // namespace

int rehearse(const RehearseOptions& options, std::ostream& out, std::ostream& err) {
  check_receipt(options);
  std::function<void(const ports::StopReason&)> on_stop;
  machine::State state = load_state(options);
  const auto parent = state.environment.parent;
  if (options.parent) {
    state.environment.parent = rehearsal::with_line(parent, base::strings::to_wide(*options.parent));
  }
  const auto world = std::make_unique<machine::Machine>(
      std::move(state), machine_options(options, [&on_stop](const ports::StopReason& reason) { on_stop(reason); }));
  const machine::State before = world->state();
  const auto engines = ports::make_engines(world->errors());
  const auto source = rehearsal::script_source(options.script, options.script_key, engines->cipher());
  add_document(*world, edition::script_id, source.bytes);
  add_document(*world, edition::configuration_id, edition::configuration());

  ports::System system = world->system(*engines);
  rehearsal::NotingCng cng(system.cng);
  rehearsal::SwitchedEnvironment environment(system.environment, options.switches);
  rehearsal::ScriptRun run(ports::with(system, environment, cng));
  rehearsal::OutputFolder folder(options.out);
  rehearsal::Report report("Rehearsal of " + source.title + " on " + options.machine, folder, out, err);
  report.read_log_by([&](const rehearsal::Outcome& outcome) -> std::optional<std::string> {
    if (!options.out) return std::nullopt;
    diagnostics::reader::KeyOpener keys(system.cng);
    rehearsal::know_keys_of(cng, keys);
    return rehearsal::clear_text_of(written_through(outcome, folder), &keys, err);
  });
  report.add_file("machine.json", [&world, &parent] {
    // A line that was given is for this run alone, like the switches.
    world->change([&parent](machine::State& left) { left.environment.parent = parent; });
    return world->to_json();
  });
  report.add_receipt(
      [&](const rehearsal::Outcome& outcome) {
        return receipt::settle(rehearsal::account_of(outcome, world->text()), before, world->state());
      },
      options.receipt);
  on_stop = [&](const ports::StopReason& reason) {
    report.finish(run.stopped(reason));
    std::_Exit(EXIT_FAILURE);
  };
  const int code = rehearsal::run_and_report(run, source, report, err);
  if (const std::string reason = world->desk_failure(); !reason.empty()) err << "ky: " << reason << '\n';
  return world->desk_failure().empty() ? code : EXIT_FAILURE;
}

}  // namespace workbench
