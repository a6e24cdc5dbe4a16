#include "tools/ky/rehearse/run_and_report.h"

#include "platform/desk/process.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/rehearse/progress.h"

namespace rehearsal {

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
