#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands that mount the registry hives of users who are not logged on.
namespace host::schema {

inline constexpr CommandSchema reg_load_all_user_hives = {
    .name = "RegLoadAllUserHives",
    .log_name = "RegLoadAllUserHivesCommand",
    .summary = "Mounts the registry hive of every user who is not logged on.",
    .remarks =
        R"(Behind it the keys of all users stand below `HKEY_USERS`: those of users who are logged on under their own
name, the others under their name and a marker. `DeleteRegKey` and `DeleteRegValue` reach each of them by a
key that begins with `*\`.

The system's own accounts and backups of profiles are passed over. A profile that cannot be mounted is told
in the log, and the others are mounted. Mounted hives stay until `RegUnloadPreviouslyLoadedUserHives` runs, so
let every way through the script lead there.

It needs the rights to restore and to back up files, which administrators have.)",
    .results = shape_results,
    .example = R"(<RegLoadAllUserHives/>)",
};

inline constexpr CommandSchema reg_unload_previously_loaded_user_hives = {
    .name = "RegUnloadPreviouslyLoadedUserHives",
    .log_name = "RegUnloadPreviouslyLoadedUserHivesCommand",
    .summary = "Unmounts the registry hives that were mounted in this run, or in one that was cut off.",
    .remarks =
        R"(It goes by the marker in the keys' names, so that it needs no `RegLoadAllUserHives` before it: at a script's
beginning it clears what an earlier run left. A hive of which a program has a key open stays mounted, is
told in the log, and can be unmounted by a later run.

It needs the same rights as `RegLoadAllUserHives`.)",
    .results = shape_results,
    .example = R"(<RegUnloadPreviouslyLoadedUserHives/>)",
};

}  // namespace host::schema
