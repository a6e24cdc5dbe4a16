#include "tools/ky/reference/applying_rules.h"

#include <set>

namespace reference {

namespace {

using host::Access;
using host::AttributeSchema;
using host::Form;

void add_for_form(const AttributeSchema& each, std::set<std::string_view>& rules) {
  switch (each.form) {
    case Form::integer:
    case Form::flag:
    case Form::milliseconds:
      rules.insert("bad-number");
      break;
    case Form::index:
      rules.insert({"bad-number", "lost-way"});
      break;
    case Form::folder_path:
      rules.insert("missing-backslash");
      break;
    case Form::xpath:
      rules.insert({"bad-xpath", "xpath-brackets"});
      break;
    case Form::expression:
      rules.insert({"bad-expression", "ignored-tail", "unwritten-key"});
      break;
    case Form::integer_name:
    case Form::text_name:
    case Form::either_name:
      rules.insert("odd-name");
      break;
    case Form::integer_or_name:
      rules.insert({"bad-number", "odd-name"});
      break;
    default:
      break;
  }
}

}  // namespace

std::vector<std::string_view> applying_rules(const host::CommandSchema& command) {
  std::set<std::string_view> rules;
  if (!command.one_of.empty()) rules.insert("missing-attribute");
  for (const AttributeSchema& each : command.attributes) {
    add_for_form(each, rules);
    if (each.access == Access::reads) rules.insert("unwritten-key");
    if (each.expanded) rules.insert("undefined-variable");
    if (each.keeps_expansion) rules.insert("kept-expansion");
    if (each.required) rules.insert("missing-attribute");
    if (each.numbered) rules.insert("numbered-gap");
    if (each.longest > 0) rules.insert("long-value");
    if (!each.needs.empty()) rules.insert("ignored-attribute");
    if (!each.choices.empty()) rules.insert("bad-choice");
  }
  return {rules.begin(), rules.end()};
}

}  // namespace reference
