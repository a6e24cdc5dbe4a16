#pragma once

#include "host/script/command_schema.h"

// The host's own commands that put values and start programs.
namespace host::schema {

inline constexpr AttributeSchema run_command_attributes[] = {
    {.name = "command",
     .form = Form::file_path,
     .required = true,
     .expanded = true,
     .meaning = "The program; with `useShell` a document as well."},
    {.name = "args", .form = Form::text, .expanded = true, .meaning = "Its arguments, as one text."},
    {.name = "currentDir",
     .form = Form::folder_path,
     .expanded = true,
     .meaning = "The folder that it starts in; absent or empty: the host's own."},
    {.name = "waitAmount",
     .form = Form::integer,
     .default_value = "0",
     .meaning = "How long to wait for its end, in milliseconds; 0: not at all, negative: without limit."},
    {.name = "silent", .form = Form::flag, .default_value = "0", .meaning = "1: without a window."},
    {.name = "useShell",
     .form = Form::flag,
     .default_value = "0",
     .meaning = "1: started through the shell, which opens documents and asks for elevation."},
    {.name = "runAsLimitedUser",
     .form = Form::flag,
     .default_value = "0",
     .meaning =
         "1: handed to the desktop's shell, which runs it under its own token; wins over `useShell`, and there is "
         "nothing to wait for."},
};
inline constexpr ResultMeaning run_command_results[] = {
    {"0", "the program runs or, when it is waited for, has ended"},
    {"31", "a text names an undefined variable, or no desktop takes the program"},
    {"87", "`command` is empty"},
    {"258", "the program has not ended in time, and runs on"},
    {"1359", "another thread is inside the command"},
    {"other", "the error of the launch or of the wait"},
};
inline constexpr CommandSchema run_command = {
    .name = "RunCommand",
    .log_name = "RunCommand",
    .owner = Owner::host,
    .summary = "Starts a program, and waits for its end if told to.",
    .remarks =
        "What a program ends with is written to the log and is not the result, since programs have no common idea of a "
        "failure.",
    .attributes = run_command_attributes,
    .results = run_command_results,
    .example =
        R"(<RunCommand command="[InstallPath]KyElevate.exe" args="/release" currentDir="[SystemPath]" waitAmount="30000" silent="1"/>)",
};

inline constexpr AttributeSchema set_progress_attributes[] = {
    {.name = "value", .form = Form::integer, .meaning = "How far the run is; absent: as before."},
    {.name = "max", .form = Form::integer, .meaning = "How far it will go; absent: as before."},
};
inline constexpr std::string_view set_progress_one_of[] = {"value", "max"};
inline constexpr KeyUse set_progress_keys[] = {
    {"int_CurrentProgressValue", Access::writes, "`value`, where it is given"},
    {"int_MaxProgressValue", Access::writes, "`max`, where it is given"},
    {"HANDLE_Refresh", Access::reads, "signalled and reset, so that the window looks again"},
};
inline constexpr ResultMeaning set_progress_results[] = {
    {"0", "done"},
    {"1359", "another thread is inside the command"},
    {"other", "the error of signalling"},
};
inline constexpr CommandSchema set_progress = {
    .name = "SetProgress",
    .log_name = "SetProgress",
    .owner = Owner::host,
    .summary = "Moves the progress that the window shows.",
    .attributes = set_progress_attributes,
    .one_of = set_progress_one_of,
    .keys = set_progress_keys,
    .results = set_progress_results,
    .example = R"(<SetProgress value="1" max="7"/>)",
};

inline constexpr AttributeSchema set_variable_attributes[] = {
    {.name = "var",
     .form = Form::either_name,
     .required = true,
     .access = Access::writes,
     .integer_with = "value",
     .text_with = "strValue",
     .meaning = "The variable."},
    {.name = "value", .form = Form::integer, .meaning = "The value of the integer variable of that name."},
    {.name = "strValue",
     .form = Form::text,
     .expanded = true,
     .meaning = "The value of the text variable of that name; paths that others are appended to end in a backslash."},
};
inline constexpr std::string_view set_variable_one_of[] = {"value", "strValue"};
inline constexpr ResultMeaning set_variable_results[] = {
    {"0", "done"},
    {"31", "`strValue` names an undefined variable, and nothing is put"},
    {"1359", "another thread is inside the command"},
};
inline constexpr CommandSchema set_variable = {
    .name = "SetVariable",
    .log_name = "SetVariable",
    .owner = Owner::host,
    .summary = "Puts a variable: an integer, a text, or one of each under the same name.",
    .remarks = "A text that was there is released after it is replaced.",
    .attributes = set_variable_attributes,
    .one_of = set_variable_one_of,
    .results = set_variable_results,
    .example = R"(<SetVariable var="SuitePath" strValue="[ProgramFilesPath]Tavrine\"/>)",
};

}  // namespace host::schema
