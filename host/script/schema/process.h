#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands that close running programs, and that start one.
namespace host::schema {

inline constexpr AttributeSchema close_process_attributes[] = {
    {.name = "command",
     .form = Form::file_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .needs = "process",
     .meaning =
         "The program that asks the process to close, without quotes; empty: the process is terminated at once."},
    {.name = "process",
     .form = Form::text,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "How the name of the process's executable begins; case counts."},
    {.name = "args", .form = Form::text, .meaning = "The arguments of `command`, as one text."},
    {.name = "currentDir",
     .form = Form::folder_path,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The folder that `command` starts in; absent or empty: the host's own."},
    {.name = "waitAmount",
     .form = Form::milliseconds,
     .required = true,
     .meaning = "How long the process has got to end before it is terminated; `INFINITE` or -1: without limit."},
};
inline constexpr ResultMeaning close_process_results[] = {
    {"0", "always, also where nothing was closed or another thread is inside the command"},
};
inline constexpr TargetSchema close_process_targets[] = {{.kind = TargetKind::process_name, .name = "process"}};
inline constexpr CommandSchema close_process = {
    .name = "CloseProcess",
    .log_name = "CloseProcess",
    .summary = "Ends one process that is found by the beginning of its name.",
    .remarks =
        R"(The first process in the system's list whose name begins so is taken, wherever its file lies and whoever
signed it. Where a program of somebody else may have such a name use `CloseProcesses`.

`waitAmount` counts from the start of `command`, and is for the process, not for `command`. Whether
`command` could be started makes no difference. A process that may be waited for but not terminated is left
running when the time is up.

`args` is used as it stands, with its brackets. A text with an undefined variable stays as it is. The others
are expanded at the first run and stay as they are then; in a loop, later runs see the first run's values.

Where the process is not running or cannot be opened the log warns that the next index is asked for before
the command has run, and no other thread can run this element again.)",
    .attributes = close_process_attributes,
    .results = close_process_results,
    .targets = close_process_targets,
    .example =
        R"(<CloseProcess process="KyTray.exe" command="[InstallPath]KyTray.exe" args="/quit" currentDir="[InstallPath]" waitAmount="5000"/>)",
};

inline constexpr std::uint16_t close_processes_each = 3;
inline constexpr AttributeSchema close_processes_attributes[] = {
    {.name = "maxTimeout",
     .form = Form::integer,
     .required = true,
     .meaning = "How long all of them together have got to end, in milliseconds, before those left are terminated; -1: "
                "without limit."},
    {.name = "process",
     .form = Form::text,
     .numbered = true,
     .gaps_allowed = true,
     .attributes_each = close_processes_each,
     .needs = "currentDir",
     .meaning = "The name of the executable, whole and with its extension. Case counts where the folder tells names "
                "apart by it."},
    {.name = "cmd",
     .form = Form::text,
     .expanded = true,
     .keeps_expansion = true,
     .numbered = true,
     .gaps_allowed = true,
     .attributes_each = close_processes_each,
     .needs = "process",
     .meaning =
         "The whole command line that asks the program to close; with `limited<n>` only the arguments that it is "
         "started with itself. Empty: it is terminated when the time is up."},
    {.name = "currentDir",
     .form = Form::folder_path,
     .expanded = true,
     .keeps_expansion = true,
     .numbered = true,
     .gaps_allowed = true,
     .attributes_each = close_processes_each,
     .needs = "cmd",
     .meaning =
         "The folder of the executable, spelled as the system shows it. Without its closing backslash no process "
         "is ever recognised."},
    {.name = "limited",
     .form = Form::flag,
     .numbered = true,
     .gaps_allowed = true,
     .attributes_each = close_processes_each,
     .needs = "process",
     .default_value = "0",
     .meaning = "1: the request runs under the desktop's token."},
};
inline constexpr TargetSchema close_processes_targets[] = {
    {.kind = TargetKind::process_file, .name = "process", .place = "currentDir"}};
inline constexpr CommandSchema close_processes = {
    .name = "CloseProcesses",
    .log_name = "CloseProcesses",
    .summary =
        "Asks running programs of the product to close, and terminates those that are left after one shared limit.",
    .remarks =
        R"(A process is closed only where its file is the very file that `currentDir<n>` and `process<n>` name; what else
runs under that name is left alone, and told in the log. A folder given in its short form or by a
substituted drive is mostly of another length and then recognises nothing. `docs/security.md` tells how.

A number counts only with all three of `process<n>`, `cmd<n>` and `currentDir<n>`. Numbers may be missing,
and go up to a third of the count of the element's attributes, without `maxTimeout`: number them from 1 on.
One name may stand there several times, with different folders.

All requests go out before the wait begins. At most 64 programs can be waited for: with more, all that still
run are terminated at once. A program that could not be asked is terminated after the limit as well; one
that cannot be opened is asked and otherwise left alone.

Where the system gives no list of processes, an exception ends the run.

A number with an undefined variable is left out, with a line in the log. What is expanded at the first run
stays as it is then; in a loop, later runs see the first run's values.)",
    .attributes = close_processes_attributes,
    .results = shape_results,
    .targets = close_processes_targets,
    .example =
        R"(<CloseProcesses maxTimeout="10000" process1="KyUI.exe" cmd1='"[InstallPath]KyUI.exe" /quit' currentDir1="[InstallPath]" process2="KyTray.exe" cmd2="/quit" currentDir2="[InstallPath]" limited2="1"/>)",
};

inline constexpr AttributeSchema run_dll32_attributes[] = {
    {.name = "filePath",
     .form = Form::file_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "A file without which nothing is started. It plays no other part: name it in `arguments` too."},
    {.name = "arguments",
     .form = Form::text,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The whole command line behind `rundll32.exe`."},
    {.name = "currentDir",
     .form = Form::folder_path,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The folder that it starts in; it has to be there."},
    {.name = "waitAmount",
     .form = Form::milliseconds,
     .default_value = "0",
     .meaning = "How long to wait for its end; `INFINITE` or -1: without limit. It is never ended."},
};
inline constexpr ResultMeaning run_dll32_results[] = {
    {"0", "always, also where nothing was started or another thread is inside the command"},
};
inline constexpr CommandSchema run_dll32 = {
    .name = "RunDll32",
    .log_name = "RunDll32",
    .summary = "Starts rundll32.exe after a look at a file and a folder, and waits for its end if told to.",
    .remarks =
        R"(Only the log tells whether it was started; its exit code, and whether the time ran out, is not told at all.
The system searches for `rundll32.exe` as for any program that is named without a path.

A text with an undefined variable stays as it is, with its brackets. The others are expanded at the first
run and stay as they are then; in a loop, later runs see the first run's values.)",
    .attributes = run_dll32_attributes,
    .results = run_dll32_results,
    .example =
        R"(<RunDll32 filePath="[InstallPath]KyShell.dll" arguments="&quot;[InstallPath]KyShell.dll&quot;,Unregister" currentDir="[InstallPath]" waitAmount="30000"/>)",
};

}  // namespace host::schema
