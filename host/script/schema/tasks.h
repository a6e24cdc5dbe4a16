#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands that remove scheduled tasks.
namespace host::schema {

inline constexpr AttributeSchema remove_scheduled_task_attributes[] = {
    {.name = "name",
     .form = Form::text,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The task's name, without a folder; case counts. Absent or empty: nothing is removed."},
};
inline constexpr TargetSchema remove_scheduled_task_targets[] = {{.kind = TargetKind::task, .name = "name"}};
inline constexpr CommandSchema remove_scheduled_task = {
    .name = "RemoveScheduledTask",
    .log_name = "RemoveScheduledTask",
    .summary = "Deletes one task from the root folder of the task scheduler.",
    .remarks =
        R"(Only the log tells whether the task went. A task of another case, or in a folder, is left alone. With an
undefined variable the task scheduler is not touched.

The name is expanded at the first run and stays as it is then; in a loop, later runs see the first run's
values.

The log has no end line for this command, and warns that the next index is asked for before it has run.)",
    .attributes = remove_scheduled_task_attributes,
    .results = shape_results,
    .targets = remove_scheduled_task_targets,
    .example = R"(<RemoveScheduledTask name="Tavrine Update"/>)",
};

}  // namespace host::schema
