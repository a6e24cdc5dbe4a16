#pragma once

#include <string>
#include <vector>

#include "tools/ky/log/page_model.h"

namespace log_tool {

/// The data of a page, as JSON that a script element can hold:
///
///   {"runs": [{"name", "label", "start": seconds since 1970, or null where the name tells none, "dated", "leftOut",
///              "threads": [[id, description]...], "commands": [name...], "files": [name...],
///              "problems": [[kind, file, offset, bytes, text]...],
///              "time": [milliseconds since the record before...], "thread": [position...], "file": [position...],
///              "offset": [...], "message": [...],
///              "severity": [[record, 1: warning, 2: error]...], "code": [[record, code, 1: a program's]...],
///              "spans": [[first record, last record, command, index, next, ending, end, severity, code,
///                         1: a program's]...]}...]}
///
/// Times are local milliseconds since 1970, since midnight where the run is not dated; the first is absolute.
[[nodiscard]] std::string page_data(const std::vector<PageRun>& runs);

}  // namespace log_tool
