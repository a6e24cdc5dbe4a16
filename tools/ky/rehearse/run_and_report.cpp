#include "tools/ky/rehearse/run_and_report.h"

#include "platform/desk/process.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/rehearse/progress.h"

namespace rehearsal {

ports::System with(const ports::System& world, ports::Environment& environment, ports::Termination& termination,
                   ports::Cng& cng) {
  return {world.errors,  world.clock,     world.threads,   world.waits, world.files, world.registry,    world.processes,
          world.modules, world.resources, environment,     termination, world.text,  world.log_streams, world.crashes,
          world.winapi,  world.cipher,    world.key_maker, world.xml,   cng,         world.own_module};
}

int run_and_report(ScriptRun& run, const ScriptSource& source, Report& report, std::ostream& err) {
  const std::vector<std::string> reasons =
      run.prepare(source.bytes, source.key, [&report](std::string_view record) { report.log(record); });
  if (!reasons.empty()) {
    std::string lines;
    for (const std::string& reason : reasons) lines += (lines.empty() ? "" : "\n") + source.title + ": " + reason;
    throw workbench::BadInput(lines);
  }
  report.open();
  ProgressLine progress(err, desk::is_terminal(), run.program().steps().size());
  const Outcome outcome =
      run.run([&progress](std::size_t number, const std::string& name) { progress.show(number, name); });
  progress.clear();
  return report.finish(outcome);
}

}  // namespace rehearsal
