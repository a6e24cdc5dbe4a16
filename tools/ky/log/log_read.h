#pragma once

#include <iosfwd>

#include "diagnostics/reader/record.h"
#include "tools/ky/options.h"

namespace log_tool {

/// `ky log read`: gives the records to `out`, or writes them as a page, and what is wrong with the files to `err`.
/// Gives the exit code: 1 where something could not be read. Throws `BadInput` where the key, the algorithm or a path
/// is wrong from the start, and where the page cannot be written.
[[nodiscard]] int log_read(const workbench::LogReadOptions& options, std::ostream& out, std::ostream& err);

/// Reads what `options` name, all but the output's form, into `sink`. Throws likewise.
void read_into(const workbench::LogReadOptions& options, diagnostics::reader::RecordSink& sink);

}  // namespace log_tool
