#pragma once

#include "platform/ports/crashes.h"

namespace diagnostics {

/// The filter that writes two dumps of a crash, full and normal, to the folder "Dumps" beside the program, or else in
/// the profile of all users. It has no state and lives as long as the process.
[[nodiscard]] ports::CrashFilter& dump_filter();

/// Writes the dumps. Nothing is checked on the way: what does not go is left out, without a message.
void write_dumps(ports::ExceptionPointers* exception);

}  // namespace diagnostics
