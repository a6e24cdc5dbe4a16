#include "tools/ky/reference/command_index.h"

#include "host/script/command_schema.h"
#include "host/script/encipher.h"
#include "tools/ky/reference/command_page.h"
#include "tools/ky/reference/schema_document.h"
#include "tools/ky/reference/wording.h"

namespace reference {

namespace {

std::string commands_of(host::Owner owner) {
  std::string out = "| Element | Class | Log name | What it does |\n|---|---|---|---|\n";
  for (const host::CommandSchema& each : host::all_commands()) {
    if (each.owner != owner) continue;
    const std::string name(each.name);
    out += "| [`" + name + "`](" + name + ".md) | " + code(class_of(each)) + " | " + std::string(each.log_name) +
           " | " + std::string(each.summary) + " |\n";
  }
  return out;
}

std::string forms() {
  std::string out = "| Form | What it asks for |\n|---|---|\n";
  for (int form = 0; form <= static_cast<int>(host::Form::integer_or_name); ++form) {
    const auto each = static_cast<host::Form>(form);
    out += "| " + std::string(words_of(each)) + " | " + std::string(explained(each)) + " |\n";
  }
  return out;
}

}  // namespace

std::string command_index() {
  return "<!-- " + std::string(generated_note) + R"( -->
# Commands

The elements of a [script](../script-format.md), a page each.

## Of the library

)" + commands_of(host::Owner::library) +
         R"(
## Of the reference host

)" + commands_of(host::Owner::host) +
         R"(
[The host](../host.md) tells more of these, of deletions above all.

## What every command has

)" + attribute_table(host::common_attributes()) +
         R"(
`id` names an element for `next` and `target`, which lead to it as `#id`; it is in the plain form alone.

A result other than 0 does not stop a run by itself: `errVar` keeps it for a `Jump`.

## Variables

A variable is a key of the host's store. Scripts name it without its prefix: integers live under `int_`, texts under
`String_`, so `Found` may be both. An integer that was never put is 0.

Where an attribute is expanded, `[Name]` stands for the text of `String_Name`, which may hold such forms itself. Each
page tells what the command makes of an undefined one.

Before the first command there are )" +
         listed(host::keys_put_by_host()) + R"(. Paths among them end in exactly one backslash.

## Forms of values

A value has at most )" +
         std::to_string(host::longest_plain_value) + R"( bytes of UTF-8.

)" + forms() +
         R"(
## In an editor

`resources/installerxmlschema.xsd` lets an editor complete and explain all of this; a script names it on its root:

```xml
<install version="1.0" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:noNamespaceSchemaLocation="installerxmlschema.xsd">
```

It knows numbered attributes up to )" +
         std::to_string(greatest_family_number) +
         R"(. `ky script check` is the authority: it takes any number, counts bytes, and
follows ways and values.
)";
}

}  // namespace reference
