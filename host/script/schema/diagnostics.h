#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands of the log and of crashes.
namespace host::schema {

inline constexpr AttributeSchema clear_old_logs_attributes[] = {
    {.name = "maxTimeVar",
     .form = Form::integer_name,
     .access = Access::reads,
     .meaning = "The variable with the limit, in seconds since the start of 1970: logs that began earlier go. Absent, "
                "or where the variable is 0, nothing goes."},
    {.name = "label",
     .form = Form::text,
     .meaning = "Only files whose names begin with this and a dot; as for `Logger`. Absent: every log."},
};
inline constexpr CommandSchema clear_old_logs = {
    .name = "ClearOldLogs",
    .log_name = "ClearOldLogsCommand",
    .summary = "Deletes log files of earlier runs.",
    .remarks =
        R"(It looks at `*.bin` in the common application data folder. The number that begins at the first digit of a name
is taken for the time, so a label with a digit is taken for the time as well, and a name without digits is
never deleted. A file that cannot be deleted is told in the log, and the others go.)",
    .attributes = clear_old_logs_attributes,
    .results = shape_results,
    .example = R"(<ClearOldLogs maxTimeVar="OldestLog" label="setup"/>)",
};

inline constexpr CommandSchema crash_handler = {
    .name = "CrashHandler",
    .log_name = "CrashHandler",
    .summary = "Sees to it that a crash of the process leaves two dumps.",
    .remarks =
        R"(They lie in the folder `Dumps` beside the host, or in that of all users' profile where it cannot be made there: a
full one, `ky_*.dmp`, and a small one, `kym*.dmp`. The handlers stay until the process ends.)",
    .results = shape_results,
    .example = R"(<CrashHandler/>)",
};

inline constexpr AttributeSchema logger_attributes[] = {
    {.name = "label",
     .form = Form::text,
     .longest = 20,
     .meaning = "Heads the names of the log's files, with a dot behind it. A longer one could stop the process."},
    {.name = "crypt", .form = Form::text, .meaning = "The algorithm of the log's key: `AES`."},
    {.name = "length", .form = Form::integer, .default_value = "0", .meaning = "The size of that key in bits: `256`."},
    {.name = "isMainThread",
     .form = Form::flag,
     .default_value = "0",
     .meaning = "1: threads that start no log of their own write to this one's."},
};
inline constexpr KeyUse logger_keys[] = {
    {"SelfFree_LoggerApi", Access::writes, "the log"},
    {"SelfFree_ErrorApi", Access::writes, "the run's error text"},
};
inline constexpr CommandSchema logger = {
    .name = "Logger",
    .log_name = "Logger",
    .summary = "Brings the run's log up.",
    .remarks =
        R"(With `crypt` and `length` the log is sealed: only who has the private key reads it. Without both, or where the
system refuses them, it is scrambled, which hides nothing from whoever wants to know. What commands before
it would log is lost. `docs/log-format.md` tells the files' names and bytes, `ky log read` reads them.)",
    .attributes = logger_attributes,
    .keys = logger_keys,
    .results = shape_results,
    .example = R"(<Logger label="setup" crypt="AES" length="256"/>)",
};

}  // namespace host::schema
