#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"
#include "host/script/schema/host_deletions.h"

// The library's commands on single registry keys.
namespace host::schema {

inline constexpr AttributeSchema reg_key_exists_attributes[] = {
    {.name = "base", .form = Form::text, .required = true, .choices = registry_roots, .meaning = "The root."},
    {.name = "subkey",
     .form = Form::registry_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The key below the root."},
    {.name = "variable",
     .form = Form::integer_name,
     .required = true,
     .access = Access::writes,
     .longest = 95,
     .meaning = "The variable that receives 1 where the key is there; otherwise it stays as it is."},
};
inline constexpr KeyUse reg_key_exists_keys[] = {
    {.key = "int_x64",
     .meaning = "not 0: the key is looked for in the view of 64-bit programs",
     .may_be_unwritten = true},
};
inline constexpr ResultMeaning reg_key_exists_results[] = {
    {"0", "also where the key is absent"},
    {"1359", "another thread is inside the command"},
};
inline constexpr CommandSchema reg_key_exists = {
    .name = "RegKeyExists",
    .log_name = "RegKeyExists",
    .summary = "Stores 1 where a registry key exists.",
    .remarks =
        R"(An absent key stores nothing: put 0 with `SetVariable` before, where an earlier command may have left a 1. A
key that cannot be read for lack of rights counts as absent. A longer name of the variable would stop the
process.

A key with an undefined variable is looked for as it stands, with its brackets. It is expanded at the first
run and stays as it is then; in a loop, later runs see the first run's values.)",
    .attributes = reg_key_exists_attributes,
    .keys = reg_key_exists_keys,
    .results = reg_key_exists_results,
    .example = R"(<RegKeyExists base="HKEY_LOCAL_MACHINE" subkey="SOFTWARE\Tavrine" variable="Registered"/>)",
};

inline constexpr KeyUse delete_ifeo_keys_keys[] = {
    {"String_IfeoExecutables", Access::reads, "the names of executables, without `.exe`, with `;` between them"},
};
inline constexpr TargetSchema delete_ifeo_keys_targets[] = {
    {.kind = TargetKind::ifeo_keys, .name = "String_IfeoExecutables"}};
inline constexpr CommandSchema delete_ifeo_keys = {
    .name = "DeleteIfeoKeys",
    .log_name = "DeleteIfeoKeys",
    .summary = "Deletes the Image File Execution Options keys of a list of executables.",
    .remarks =
        R"(Each key goes with all that is below it, and links below it are followed. One that is not there is an error
line with the number 2 in the log, which is usual; the list goes on after every failure. A closing `;` is
fine; an empty name between two of them stands for the key `.exe`.

The log has no line with the next index for this command, and warns that the index is asked for before it
has run.)",
    .keys = delete_ifeo_keys_keys,
    .results = shape_results,
    .targets = delete_ifeo_keys_targets,
    .example = R"(<DeleteIfeoKeys/>)",
};

}  // namespace host::schema
