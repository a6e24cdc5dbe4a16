#pragma once

#include <string>
#include <vector>

#include "diagnostics/reader/log_file.h"
#include "diagnostics/reader/record.h"

namespace diagnostics::reader {

// Reading needs less than 64 MiB, whatever the files' sizes.

/// Reads log files of both forms, thread files and merged ones, and gives their records and what is wrong with them to
/// the sink. Files of one run, told by folder and name, are read together; runs one after the other, the oldest first;
/// a file whose name is no log's is a run of its own. In a timeline, records of one moment come in the order of thread
/// ids. A thread that stands in a merged file and in a file of its own is read once.
void read_logs(const std::vector<std::string>& paths, const Settings& settings, RecordSink& sink);

/// The paths of all files of the run that `path` belongs to, or of all logs in the folder `path`. Where the folder
/// cannot be listed, and for a file whose name is no log's, it is the path alone.
[[nodiscard]] std::vector<std::string> files_of_run(const std::string& path);
[[nodiscard]] std::vector<std::string> files_of_folder(const std::string& folder);

}  // namespace diagnostics::reader
