#include "tools/ky/reference/command_page.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

#include "tools/ky/reference/applying_rules.h"
#include "tools/ky/reference/wording.h"

namespace reference {

namespace {

using host::Access;
using host::AttributeSchema;
using host::CommandSchema;
using host::Form;

void row(std::string& out, std::initializer_list<std::string> cells) {
  out += '|';
  for (const std::string& cell : cells) out += cell.empty() ? " |" : ' ' + cell + " |";
  out += '\n';
}

/// The keys that a name form stands for, and when.
std::vector<std::pair<std::string, std::string>> keys_of(const AttributeSchema& each) {
  const auto with = [](std::string_view name) { return name.empty() ? std::string() : "with " + code(name); };
  const auto without = [](std::string_view name) { return name.empty() ? std::string() : "without " + code(name); };
  const std::string name = " the name in " + code(shown_name(each));
  switch (each.form) {
    case Form::integer_name:
      return {{"`int_` and" + name, ""}};
    case Form::text_name:
      return {{"`String_` and" + name, ""}};
    case Form::either_name:
      return {{"`int_` and" + name, each.integer_with.empty() ? without(each.text_with) : with(each.integer_with)},
              {"`String_` and" + name, with(each.text_with)}};
    case Form::integer_or_name:
      return {{"`int_` and" + name, with(each.name_with)}};
    default:
      return {};
  }
}

std::string_view words_of_access(Access access) {
  return access == Access::writes ? "written" : "read";
}

std::string key_table(const CommandSchema& command) {
  std::string rows;
  for (const AttributeSchema& each : command.attributes) {
    for (const auto& [key, when] : keys_of(each)) row(rows, {key, std::string(words_of_access(each.access)), when});
    if (each.expanded) row(rows, {"`String_Name` of each `[Name]` in " + code(shown_name(each)), "read", ""});
    if (each.form == Form::expression) {
      row(rows, {"`int_` and each name in " + code(shown_name(each)), "read", "and written where it is assigned to"});
    }
  }
  for (const host::KeyUse& each : command.keys) {
    row(rows, {code(each.key), std::string(words_of_access(each.access)), std::string(each.meaning)});
  }
  return rows.empty() ? rows : "| Key | Is | When |\n|---|---|---|\n" + rows;
}

void section(std::string& out, std::string_view title, const std::string& body) {
  if (!body.empty()) out.append("\n## ").append(title).append("\n\n").append(body);
}

std::string attributes_of(const CommandSchema& command) {
  std::string body;
  if (!command.attributes.empty()) body = attribute_table(command.attributes) + '\n';
  if (!command.one_of.empty()) body += "At least one of " + listed(command.one_of) + " must be there. ";
  const bool families = std::any_of(command.attributes.begin(), command.attributes.end(),
                                    [](const AttributeSchema& each) { return each.numbered; });
  if (families) body += "`<n>` is a number from 1 on, without leading zeros. ";
  return body + (command.attributes.empty()
                     ? "None of its own, only those that [every command](README.md#what-every-command-has) has.\n"
                     : "[Every command](README.md#what-every-command-has) has some more.\n");
}

std::string rules_of(const CommandSchema& command) {
  std::string links;
  for (const std::string_view rule : applying_rules(command)) {
    const std::string name(rule);
    links += (links.empty() ? "" : ", ") + ('[' + name + "](../rules/" + name + ".md)");
  }
  return links.empty() ? links : "Beside what holds for every element, `ky script check` looks for " + links + ".\n";
}

}  // namespace

std::string attribute_table(std::span<const AttributeSchema> attributes) {
  std::string out = "| Attribute | Form | Required | Default | Expanded | Meaning |\n|---|---|---|---|---|---|\n";
  for (const AttributeSchema& each : attributes) {
    row(out,
        {code(shown_name(each)), std::string(words_of(each.form)), each.required ? "yes" : "",
         each.default_value.empty() ? "" : code(each.default_value), each.expanded ? "yes" : "", whole_meaning(each)});
  }
  return out;
}

std::string command_page(const CommandSchema& command) {
  std::string out = "<!-- " + std::string(generated_note) + " -->\n# " + std::string(command.name) + "\n\n" +
                    std::string(command.summary) + "\n\n```xml\n" + std::string(command.example) + "\n```\n\n" +
                    "A command of the " + (command.owner == host::Owner::host ? "reference host" : "library") +
                    ", class " + code(class_of(command)) + "; the log calls it " + code(command.log_name) + ".\n";
  section(out, "Attributes", attributes_of(command));
  section(out, "Keys", key_table(command));
  std::string results = "| Result | When |\n|---|---|\n";
  for (const host::ResultMeaning& each : command.results) {
    row(results, {std::string(each.code), std::string(each.meaning)});
  }
  section(out, "Results", results);
  if (!command.remarks.empty()) section(out, "Remarks", std::string(command.remarks) + '\n');
  section(out, "Checks", rules_of(command));
  return out;
}

}  // namespace reference
