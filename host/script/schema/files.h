#pragma once

#include "host/script/command_schema.h"

// The commands that look at and delete single files.
namespace host::schema {

inline constexpr AttributeSchema delete_file_attributes[] = {
    {.name = "pathFile",
     .form = Form::file_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The file."},
    {.name = "renameFile",
     .form = Form::flag,
     .default_value = "0",
     .meaning =
         "1, and no other number: a file that cannot go now is moved to the folder for temporary files, and goes "
         "at the next start of the system."},
};
inline constexpr ResultMeaning delete_file_results[] = {
    {"0", "always, also where the file is still there"},
};
inline constexpr TargetSchema delete_file_targets[] = {{.kind = TargetKind::file, .name = "pathFile"}};
inline constexpr CommandSchema delete_file = {
    .name = "DeleteFile",
    .log_name = "CDeleteFileCommand",
    .summary = "Deletes one file, or moves it aside and books its deletion.",
    .remarks =
        R"(Read-only files go too. A path with an undefined variable deletes nothing. `PathExists` behind it tells
whether the file is gone.

The path is expanded at the first run and stays as it is then; in a loop, later runs see the first run's
values.

The log has no begin and end lines for this command, and warns that the next index is asked for before it
has run.)",
    .attributes = delete_file_attributes,
    .results = delete_file_results,
    .targets = delete_file_targets,
    .example = R"(<DeleteFile pathFile="[InstallPath]KyUI.exe" renameFile="1"/>)",
};

inline constexpr AttributeSchema path_exists_attributes[] = {
    {.name = "path",
     .form = Form::file_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The file or folder; a folder may end in a backslash."},
    {.name = "variable",
     .form = Form::integer_name,
     .required = true,
     .access = Access::writes,
     .longest = 235,
     .meaning = "The variable that receives 1 or 0."},
};
inline constexpr ResultMeaning path_exists_results[] = {
    {"0", "also where the variable's name is too long, and nothing is stored"},
    {"1359", "another thread is inside the command"},
};
inline constexpr CommandSchema path_exists = {
    .name = "PathExists",
    .log_name = "PathExists",
    .summary = "Stores whether a file or folder exists.",
    .remarks =
        R"(A path with an undefined variable is looked for as it stands, with its brackets.

The path is expanded at the first run and stays as it is then; in a loop, later runs see the first run's
values.)",
    .attributes = path_exists_attributes,
    .results = path_exists_results,
    .example = R"(<PathExists path="[InstallPath]" variable="Installed"/>)",
};

}  // namespace host::schema
