#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands that remove driver packages.
namespace host::schema {

inline constexpr AttributeSchema cleanup_inf_attributes[] = {
    {.name = "driverName",
     .form = Form::text,
     .meaning = "The package's own INF file name, without a folder, in any case. Absent or empty: nothing is removed."},
};
inline constexpr KeyUse cleanup_inf_keys[] = {
    {"String_SystemPath", Access::reads, "where `pnputil.exe` lies, with its closing backslash"},
    {"String_WindowsPath", Access::reads, "the folder that `INF` is in"},
};
inline constexpr TargetSchema cleanup_inf_targets[] = {{.kind = TargetKind::driver_package, .name = "driverName"}};
inline constexpr CommandSchema cleanup_inf = {
    .name = "CleanupINF",
    .log_name = "CleanupINF",
    .summary = "Removes a driver package from the driver store.",
    .remarks =
        R"(The system gives a package's INF file another name, such as `oem12.inf`. The command asks the system of each of
these files which package it came from, and runs `pnputil -d` with every name that belongs to `driverName`,
one after another, for up to three minutes each.

What became of it is not read: the log tells whether pnputil was started. A command line of 260 characters
or more is not run. Where the INF folder is there but cannot be read, the run ends with that error.)",
    .attributes = cleanup_inf_attributes,
    .keys = cleanup_inf_keys,
    .results = shape_results,
    .targets = cleanup_inf_targets,
    .example = R"(<CleanupINF driverName="kyflt.inf"/>)",
};

}  // namespace host::schema
