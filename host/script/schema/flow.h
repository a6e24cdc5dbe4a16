#pragma once

#include "host/script/command_schema.h"

// The commands that steer a script.
namespace host::schema {

inline constexpr ResultMeaning shape_results[] = {
    {"1359", "another thread is inside the command"},
    {"0", "in all other cases"},
};

inline constexpr AttributeSchema evaluate_attributes[] = {
    {.name = "expression",
     .form = Form::expression,
     .required = true,
     .meaning = "What to compute. It is read as it stands: variables are written without brackets."},
    {.name = "resultVar",
     .form = Form::integer_name,
     .access = Access::writes,
     .meaning = "The variable that receives the value, cut to an integer. Leave it out only where the expression "
                "assigns by itself."},
};
inline constexpr CommandSchema evaluate = {
    .name = "Evaluate",
    .log_name = "Evaluate",
    .summary = "Computes an expression over integer variables and stores its value.",
    .remarks =
        R"(Numbers have fractions while the expression is computed; what is stored or used bit by bit is cut towards
zero, and what does not fit into 32 bits is -2147483648. An unset variable is 0.

| Level, loosest first | Operators |
|---|---|
| 1 | `name = ...`, at the start of the expression alone: stores the value in that variable too |
| 2 | `AND` `OR` (bit by bit) `<<` `>>` |
| 3 | `==` `!=` `<` `>` `<=` `>=` (1 or 0) |
| 4 | `+` `-` |
| 5 | `*` `/` `%` `XOR` |
| 6 | `^` (power) |
| 7 | `-` and `!` (not) in front; `!` (factorial) behind |

All of them group from the left, `^` too. Operators in letters are in capitals; in small letters they
are none. Functions take one argument in brackets: `ABS` `EXP` `SQRT` `LOG` `LOG10` `SIN` `COS`
`TAN` `ASIN` `ACOS` `ATAN`, angles in radians. `E` and `PI` are constants.

An expression that does not parse is told in the log, and 0 is stored. What stands behind a complete value
is not looked at: `1 2` is 1, and so is `1 & 2`. Signs that run together are one, which is no operator:
`3!!` is 3, and `1 ++ 2` is 1. `<`, `>` and `&` have to be written as `&lt;`, `&gt;` and `&amp;` in a
script.

A remainder by 0 stops the process; so does the remainder of -2147483648 by -1.)",
    .attributes = evaluate_attributes,
    .results = shape_results,
    .example = R"(<Evaluate expression="Progress + 1" resultVar="Progress"/>)",
};

inline constexpr AttributeSchema jump_attributes[] = {
    {.name = "condition",
     .form = Form::either_name,
     .required = true,
     .access = Access::reads,
     .text_with = "strValue",
     .meaning = "The variable to look at."},
    {.name = "target", .form = Form::index, .required = true, .meaning = "Where to go if the test is true."},
    {.name = "value",
     .form = Form::integer_or_name,
     .access = Access::reads,
     .name_with = "expValue",
     .meaning = "What the variable is compared with; the test is true where both are equal."},
    {.name = "expValue",
     .form = Form::flag,
     .needs = "value",
     .default_value = "0",
     .meaning = "1: `value` names the variable to compare with."},
    {.name = "strValue",
     .form = Form::text,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The text that a text variable is compared with."},
    {.name = "compareCase",
     .form = Form::flag,
     .needs = "strValue",
     .default_value = "1",
     .meaning = "0: `strValue` may differ in the case of ASCII letters."},
};
inline constexpr CommandSchema jump = {
    .name = "Jump",
    .log_name = "Jump",
    .summary = "Goes on elsewhere if a variable holds what is asked for.",
    .remarks =
        R"(With neither `value` nor `strValue` the test is true where the integer is not 0. Where the test is false
the run goes on at `next`, or at the command that follows. An unset integer is 0; an unset text equals
nothing.

With both `value` and `strValue` the integer 0 is compared with `value`, and the variable is not read.

A variable in `strValue` must be defined: an undefined one stops the process. `strValue` is expanded at
the first run and stays as it is then; in a loop, later runs compare with that text.)",
    .attributes = jump_attributes,
    .results = shape_results,
    .example = R"(<Jump condition="Installed" value="0" target="#end"/>)",
};

inline constexpr CommandSchema nop = {
    .name = "Nop",
    .log_name = "Nop",
    .summary = "Does nothing: a landing place for jumps, or a carrier of `next`.",
    .results = shape_results,
    .example = R"(<Nop id="done" next="#end"/>)",
};

}  // namespace host::schema
