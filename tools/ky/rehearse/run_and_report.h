#pragma once

#include <iosfwd>

#include "platform/ports/system.h"
#include "tools/ky/rehearse/report.h"
#include "tools/ky/rehearse/script_run.h"
#include "tools/ky/rehearse/script_source.h"

namespace rehearsal {

/// Prepares the run, shows its progress on a terminal, runs it and finishes the report. Gives the exit code. Throws
/// `workbench::BadInput` with every reason where the script is refused; nothing has run or been written then.
[[nodiscard]] int run_and_report(ScriptRun& run, const ScriptSource& source, Report& report, std::ostream& err);

}  // namespace rehearsal
