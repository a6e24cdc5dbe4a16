#pragma once

#include <memory>
#include <vector>

#include "diagnostics/reader/log_file.h"

namespace diagnostics::reader {

using LogFiles = std::vector<std::unique_ptr<LogFile>>;

/// Opens the key headers of one run's files. All files of a run hold the same wrapped key, so that one whose header is
/// damaged borrows the key of another, also of one beside it that was not asked for. Tells the sink what stays closed,
/// and whether that is damage or a wrong private key.
void open_keys(const LogFiles& files, const Settings& settings, RecordSink& sink);

}  // namespace diagnostics::reader
