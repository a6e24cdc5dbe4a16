#pragma once

#include "host/script/command_schema.h"

// The host's own commands that delete.
namespace host::schema {

inline constexpr AttributeSchema delete_folder_attributes[] = {
    {.name = "path",
     .form = Form::folder_path,
     .required = true,
     .expanded = true,
     .meaning = "The folder: a whole path on a drive."},
    {.name = "recursive", .form = Form::flag, .default_value = "0", .meaning = "1: what is in it goes too."},
    {.name = "deleteAfterReboot",
     .form = Form::flag,
     .default_value = "0",
     .meaning = "1: what cannot go now goes at the next start of the system."},
    {.name = "moveToTemp",
     .form = Form::flag,
     .default_value = "0",
     .meaning = "1: a file that cannot go now is moved to the folder for temporary files."},
};
inline constexpr ResultMeaning delete_folder_results[] = {
    {"0", "the folder is gone, was absent, or is moved or booked as the flags allow"},
    {"31", "`path` names an undefined variable"},
    {"87", "the path is refused"},
    {"145", "the folder is full, and `recursive` is not set"},
    {"267", "there is a file of that name"},
    {"681", "there is a link among the ancestors"},
    {"1359", "another thread is inside the command"},
    {"other", "the error of the first thing that stays"},
};
inline constexpr TargetSchema delete_folder_targets[] = {{.kind = TargetKind::folder, .name = "path"}};
inline constexpr CommandSchema delete_folder = {
    .name = "DeleteFolder",
    .log_name = "DeleteFolder",
    .owner = Owner::host,
    .summary = "Deletes a folder, and what is in it if told to.",
    .remarks =
        R"(It follows no link: a link in the folder goes itself, and what it points at stays. Drives' roots, the
system's own folders and what holds them are refused, and so is an empty part of the path, so that a
variable in it that turns out empty never widens a deletion. [The host](../host.md#deletions) has both in full.

What is booked for the next start goes by path at that time: book nothing below a folder that users may
change.)",
    .attributes = delete_folder_attributes,
    .results = delete_folder_results,
    .targets = delete_folder_targets,
    .example = R"(<DeleteFolder path="[InstallPath]" recursive="1" deleteAfterReboot="1" moveToTemp="1"/>)",
};

inline constexpr std::string_view registry_roots[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE",
                                                      "HKEY_USERS"};
inline constexpr AttributeSchema registry_root = {
    .name = "base",
    .form = Form::text,
    .required = true,
    .expanded = true,
    .choices = registry_roots,
    .meaning = "The root.",
};
inline constexpr AttributeSchema registry_subkey = {
    .name = "subkey",
    .form = Form::registry_path,
    .required = true,
    .expanded = true,
    .meaning = "The key below the root; below `HKEY_USERS` one that begins with `*\\` stands below each user's key.",
};

inline constexpr KeyUse delete_registry_keys[] = {
    {.key = "int_x64",
     .meaning = "not 0: the key is looked for in the view of 64-bit programs, as by `RegKeyExists`",
     .may_be_unwritten = true},
};

inline constexpr AttributeSchema delete_reg_key_attributes[] = {
    registry_root,
    registry_subkey,
    {.name = "recursive", .form = Form::flag, .default_value = "0", .meaning = "1: the keys below it go too."},
};
inline constexpr ResultMeaning delete_reg_key_results[] = {
    {"0", "the key is gone or was absent"},
    {"31", "a text names an undefined variable"},
    {"87", "the key is refused"},
    {"681", "there is a link on the way"},
    {"1020", "there are keys below it, and `recursive` is not set"},
    {"1359", "another thread is inside the command"},
    {"other", "the error of the first key that stays"},
};
inline constexpr TargetSchema delete_reg_key_targets[] = {
    {.kind = TargetKind::registry_key, .name = "subkey", .root = "base"}};
inline constexpr CommandSchema delete_reg_key = {
    .name = "DeleteRegKey",
    .log_name = "DeleteRegKey",
    .owner = Owner::host,
    .summary = "Deletes a registry key, and the keys below it if told to.",
    .remarks =
        R"(It follows no link. Hives and the great branches that products lie below are refused, and so is an empty
part of a key, so that a variable in it that turns out empty never widens a deletion; a closing backslash makes
no difference. What 32-bit programs see goes by the path where it lies, `SOFTWARE\Wow6432Node\...`, in an
element of its own. [The host](../host.md#deletions) has all of it.)",
    .attributes = delete_reg_key_attributes,
    .keys = delete_registry_keys,
    .results = delete_reg_key_results,
    .targets = delete_reg_key_targets,
    .example = R"(<DeleteRegKey base="HKEY_LOCAL_MACHINE" subkey="SOFTWARE\Tavrine\" recursive="1"/>)",
};

inline constexpr AttributeSchema delete_reg_value_attributes[] = {
    registry_root,
    registry_subkey,
    {.name = "value",
     .form = Form::text,
     .required = true,
     .expanded = true,
     .meaning = "The value; an empty one is the key's default value."},
};
inline constexpr ResultMeaning delete_reg_value_results[] = {
    {"0", "the value is gone or was absent"},         {"31", "a text names an undefined variable"},
    {"87", "the base or the key is refused"},         {"681", "there is a link on the way or at its end"},
    {"1359", "another thread is inside the command"}, {"other", "the error of the deletion"},
};
inline constexpr TargetSchema delete_reg_value_targets[] = {
    {.kind = TargetKind::registry_value, .name = "value", .place = "subkey", .root = "base"}};
inline constexpr CommandSchema delete_reg_value = {
    .name = "DeleteRegValue",
    .log_name = "DeleteRegValue",
    .owner = Owner::host,
    .summary = "Deletes a registry value.",
    .remarks =
        R"(It follows no link. What 32-bit programs see goes by the path where it lies, `SOFTWARE\Wow6432Node\...`, in
an element of its own. [The host](../host.md#deletions) has all of it.)",
    .attributes = delete_reg_value_attributes,
    .keys = delete_registry_keys,
    .results = delete_reg_value_results,
    .targets = delete_reg_value_targets,
    .example =
        R"(<DeleteRegValue base="HKEY_LOCAL_MACHINE" subkey="SOFTWARE\Microsoft\Windows\CurrentVersion\Run" value="Tavrine"/>)",
};

}  // namespace host::schema
