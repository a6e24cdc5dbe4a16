#include "tools/ky/check/rules.h"

#include <algorithm>
#include <iterator>

namespace check {

namespace {

constexpr Rule rules[] = {
    {rule::bad_choice, Severity::error, "A value is none of those that its attribute takes.",
     "The command refuses the value at every run. Case counts.", "Write one of the values that the message lists."},
    {rule::bad_expression, Severity::error, "An expression does not parse.",
     "The command logs the error and stores 0, so that everything computed from it is wrong. A name or number of 128 "
     "characters or more stops the process, and so does a `%` with the divisor 0.",
     "Correct the expression; `docs/commands/Evaluate.md` lists operators and functions. Operators in letters are in "
     "capitals, and a function takes one argument in brackets."},
    {rule::bad_id, Severity::error, "An `id` is empty, taken twice or `end`.",
     "`#id` must lead to one element. `#end` is the end of the script.", "Give the element another id."},
    {rule::bad_number, Severity::error, "A value should be a number and is none.",
     "A command reads text that is no number as 0, and only the part of `5x` that is one. A `next` or `target` that is "
     "no number would send the run to the command with index 0, a flag `true` would be off, and a number beyond 32 "
     "bits would be another one. An index is 0 to 2147483646.",
     "Write a whole number: decimal, `0x` and hexadecimal, or `0` and octal. Milliseconds are decimal or `INFINITE`. A "
     "flag is `1` or `0`. Ways may be `#` and an id."},
    {rule::bad_xpath, Severity::error, "An XPath does not parse or selects no nodes.",
     "Nothing is read at any run, and `int_ReturnCode` gets the error, which the process then ends with. Variables "
     "that something puts are taken for a name here.",
     "Correct the XPath: version 1.0, an expression that gives nodes, without namespace prefixes."},
    {rule::descending_index, Severity::warning, "An element's `index` is less than the one before it.",
     "The run follows indexes, not the order of the document: what stands below runs before what stands above, and an "
     "index that is counted on from here may meet one that is taken.",
     "Leave `index` out and use ids, or put the element where its index says."},
    {rule::duplicate_index, Severity::error, "Two elements have the same index.",
     "A way to that index would lead to either. Elements without `index` count on from the one before, and so run into "
     "indexes that others name.",
     "Leave `index` out and use ids."},
    {rule::endless_loop, Severity::error, "A loop that no command can leave.",
     "No way leads out of the commands from here on: the run goes round for ever. That a command may fail and end the "
     "run is no way out that a script should count on.",
     "Lead a `Jump` or a `next` out of the loop."},
    {rule::form, Severity::error, "The file is not well-formed, or not of the form of a script.",
     "No host reads it. Nothing behind the place is looked at.",
     "See `docs/script-format.md` for the form: `install`, `commands`, and one element without content a command."},
    {rule::idle_allowance, Severity::warning, "A comment allows what is not there, or no rule that there is.",
     "An allowance that outlives its reason hides the next fault of the kind. What keeps a script from being compiled "
     "cannot be allowed.",
     "Remove it, or correct its name: `<!-- check: allow RULE -->` right before the element, several names with blanks "
     "between them, `until #id` for all elements before that one, and behind a colon a reason."},
    {rule::ignored_attribute, Severity::warning, "An attribute does nothing without another one, which is missing.",
     "The command passes over it.", "Add the attribute that the message names, or remove this one."},
    {rule::ignored_tail, Severity::warning, "Something stands behind the end of an expression.",
     "The expression ends where no operator follows, and what stands behind it is never looked at: `1 and 2` is 1, "
     "since operators in letters are in capitals, and `(1))` is 1.",
     "Remove the tail, or write the operator that is missing."},
    {rule::kept_expansion, Severity::warning, "In a loop, a value keeps what it expanded to the first time.",
     "The command replaces its text by the expanded one. When the loop comes round the variable is another, and the "
     "command still works with the first.",
     "Unroll the loop, or let a command that expands anew do the work: `SetVariable`, `DeleteFolder` and the other "
     "commands of the host do."},
    {rule::long_value, Severity::error, "A value is longer than a command can take.",
     "Enciphered, a value of more than 367 bytes of UTF-8 overruns the host's buffers, and the process stops. Some "
     "names have limits of their own, beyond which a command does nothing.",
     "Shorten it, or put it together from variables: what they expand to may be longer."},
    {rule::lost_way, Severity::error, "A way leads to no command.",
     "`target`, `next` and, without `next`, the index that follows must be those of a command, or the one behind the "
     "greatest, where the script ends. The host refuses the script otherwise.",
     "Lead it to an id. `#end` is the end of the script."},
    {rule::missing_attribute, Severity::error, "An element lacks an attribute that its command needs.",
     "The command could not be loaded or would do nothing, and the host refuses the script.", "Add the attribute."},
    {rule::missing_backslash, Severity::warning, "A folder's path does not end in a backslash.",
     "Folders end in one, in every variable that the host puts as well, so that values are written "
     "`[InstallPath]file.exe`. Without it the two names run together: `C:\\Folderfile.exe`.",
     "Write the backslash."},
    {rule::numbered_gap, Severity::warning, "A numbered attribute that is never looked at.",
     "The command stops looking at the first number that is missing, or, where numbers may be missing, at the count of "
     "the element's attributes.",
     "Number from 1 on, without gaps."},
    {rule::odd_name, Severity::warning, "A variable's name is empty or missing, or has a prefix or brackets.",
     "Names are written bare: the command itself puts `int_` or `String_` in front, and `int_Count` would be the key "
     "`int_int_Count`, which no other command reads. Brackets would be part of the name. An `Evaluate` that neither "
     "assigns nor has `resultVar` writes the key `int_`.",
     "Write the bare name."},
    {rule::undecipherable, Severity::error, "A name or value of an enciphered script does not decipher.",
     "A command's load stops the process there. The place is that in the enciphered file, which is one line.",
     "Check it with the key that it was enciphered with (`--script-key`), or compile it anew."},
    {rule::undefined_variable, Severity::error, "A text variable that nothing on any way to the command puts.",
     "The command cannot do its work: where `[Name]` is undefined the whole text stays as it is or the result is 31, "
     "and a `Jump` with it in `strValue` stops the process, as does reading a document that is not there. What one "
     "command "
     "puts is there for those behind it, not for itself.",
     "Put the variable before, or correct the name. Case counts."},
    {rule::unknown_attribute, Severity::error, "The command has no such attribute.",
     "It would be passed over, and the command would run without what it should have said. Case counts.",
     "Correct the name; `docs/commands/` has those of each command."},
    {rule::unknown_element, Severity::error, "The element is not the name of a command.",
     "The host refuses the script. Case counts.", "Correct the name; `docs/commands/` lists them."},
    {rule::unreachable, Severity::warning, "No run gets to the command.",
     "No `next`, `target` or preceding command leads there. The message counts what is reached from it alone.",
     "Remove the commands, or lead a way to them."},
    {rule::unwritten_key, Severity::warning, "A key is read that nothing on any way to the command writes.",
     "An integer is always 0 then, so that a condition is never met and a test always has the same outcome; a text "
     "equals nothing.",
     "Write the variable before, or correct the name. Case counts, and integers and texts of the same name are two."},
    {rule::xpath_brackets, Severity::warning, "Brackets in an XPath are taken for a variable, or hide one.",
     "Before it is used the XPath is expanded like any other text, and `[` of a predicate looks like `[Name]`. Where "
     "one of the names is no variable nothing is replaced, real variables neither; where all are, a predicate is "
     "replaced "
     "by text.",
     "Use variables only in an XPath without predicates, as in `/config/[Part]/Path` instead of "
     "`/config/Part[@id='[Id]']/Path`; of several matches the first is read anyway. Call no variable what a predicate "
     "holds."},
};
static_assert(std::is_sorted(std::begin(rules), std::end(rules),
                             [](const Rule& a, const Rule& b) { return a.name < b.name; }));

}  // namespace

std::string_view name_of(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

std::span<const Rule> all_rules() {
  return rules;
}

const Rule* find_rule(std::string_view name) {
  const auto* const found = std::lower_bound(std::begin(rules), std::end(rules), name,
                                             [](const Rule& rule, std::string_view of) { return rule.name < of; });
  return found == std::end(rules) || found->name != name ? nullptr : found;
}

}  // namespace check
