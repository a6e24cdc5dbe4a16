#include "tools/ky/check/value_rules.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "installer/utils/base/expressions/syntax_check.h"
#include "ky/keys.h"
#include "tools/ky/script/element_check.h"
#include "tools/ky/script/resolved_script.h"

namespace check {

namespace {

using host::Form;
using script::quoted;

bool is_letter_or_digit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

/// What is named right behind a folder's variable: nothing there but a name needs the backslash before it.
bool begins_name(char c) {
  return is_letter_or_digit(c) || c == '[';
}

class ValueRules {
 public:
  ValueRules(const std::vector<KnownCommand>& commands, std::vector<Finding>& findings)
      : commands_(commands), findings_(findings) {}

  void run() {
    for (const KnownCommand& command : commands_) {
      for (const KnownAttribute& attribute : command.attributes) {
        check_name(command, attribute);
        check_need(command, attribute);
        check_folder(attribute);
        if (attribute.schema->form == Form::expression) check_expression(command, attribute);
        note_prefixes(attribute);
      }
      check_families(command);
    }
    for (const KnownCommand& command : commands_) check_prefix(command);
  }

 private:
  void find(const KnownAttribute& attribute, std::string_view rule, std::string message) {
    findings_.push_back({attribute.written->at, rule, std::move(message)});
  }

  void check_name(const KnownCommand& command, const KnownAttribute& attribute) {
    const Form form = attribute.schema->form;
    const bool name = form == Form::integer_name || form == Form::text_name || form == Form::either_name ||
                      (form == Form::integer_or_name && script::is_name_here(*command.element, *attribute.schema));
    if (!name) return;
    const std::string& value = attribute.written->value;
    const char* oddity = nullptr;
    if (value.empty()) oddity = " is an empty name";
    if (value.find_first_of("[]") != std::string::npos) oddity = " has brackets, and is taken as it stands";
    if (value.starts_with(ky::int_prefix) || value.starts_with(ky::string_prefix)) {
      oddity = " has a prefix, and the command puts one in front of it";
    }
    if (oddity != nullptr)
      find(attribute, rule::odd_name, quoted(attribute.written->name) + ": " + quoted(value) + oddity);
  }

  /// What an attribute does nothing without; empty where it has that, or needs nothing.
  [[nodiscard]] static std::string missing_need(const KnownCommand& command, const KnownAttribute& attribute) {
    std::string need(attribute.schema->needs);
    if (!need.empty() && attribute.number > 0) need += std::to_string(attribute.number);
    return command.has(need) ? std::string() : need;
  }

  void check_need(const KnownCommand& command, const KnownAttribute& attribute) {
    const std::string need = missing_need(command, attribute);
    if (need.empty()) return;
    find(attribute, rule::ignored_attribute,
         quoted(attribute.written->name) + " does nothing without the attribute " + quoted(need));
  }

  void check_folder(const KnownAttribute& attribute) {
    const std::string& value = attribute.written->value;
    if (attribute.schema->form != Form::folder_path || value.empty()) return;
    // A variable that holds a folder ends in a backslash itself.
    if (value.ends_with('\\') || value.ends_with(']')) return;
    find(attribute, rule::missing_backslash,
         quoted(attribute.written->name) + " names a folder and does not end in a backslash");
  }

  void check_expression(const KnownCommand& command, const KnownAttribute& attribute) {
    const std::string& value = attribute.written->value;
    const base::expressions::SyntaxCheck syntax = base::expressions::check_syntax(value);
    if (!syntax.error.empty()) {
      find(attribute, rule::bad_expression,
           quoted(attribute.written->name) + ": " + syntax.error + ", at character " +
               std::to_string(syntax.error_offset + 1));
      return;
    }
    const bool assigns = std::any_of(syntax.variables.begin(), syntax.variables.end(),
                                     [](const base::expressions::VariableUse& use) { return use.written; });
    if (!assigns && !command.has("resultVar")) {
      find(attribute, rule::odd_name,
           quoted(attribute.written->name) + ": the result goes to a variable without a name");
    }
    if (syntax.end >= value.size() || value.find_first_not_of(" \t", syntax.end) == std::string::npos) return;
    find(attribute, rule::ignored_tail,
         quoted(attribute.written->name) + ": " + quoted(value.substr(syntax.end)) + " is never looked at");
  }

  void check_families(const KnownCommand& command) {
    std::map<const host::AttributeSchema*, std::vector<std::int32_t>> families;
    for (const KnownAttribute& attribute : command.attributes) {
      if (attribute.number > 0 && missing_need(command, attribute).empty()) {
        families[attribute.schema].push_back(attribute.number);
      }
    }
    // An id is in the plain script alone.
    const std::size_t count =
        command.element->attributes.size() - (command.element->find(script::id_attribute) == nullptr ? 0 : 1);
    for (auto& [schema, numbers] : families) {
      std::sort(numbers.begin(), numbers.end());
      const std::size_t readable = (count - 1) / schema->attributes_each;
      const std::int32_t unread = first_unread(numbers, schema->gaps_allowed, readable);
      if (unread == 0) continue;
      const std::string name = std::string(schema->name) + std::to_string(unread);
      const std::string reason = schema->gaps_allowed
                                     ? "the element has " + std::to_string(count) +
                                           " attributes, which lets numbers go up to " + std::to_string(readable)
                                     : "a number before it is missing";
      findings_.push_back(
          {command.element->find(name)->at, rule::numbered_gap, quoted(name) + " is never looked at: " + reason});
    }
  }

  /// Notes the variables that a name follows directly.
  void note_prefixes(const KnownAttribute& attribute) {
    if (!attribute.schema->expanded || attribute.schema->form == Form::xpath) return;
    const std::string& value = attribute.written->value;
    for (const std::string_view name : expanded_names(value)) {
      const auto behind = static_cast<std::size_t>(name.data() - value.data()) + name.size() + 1;
      if (behind < value.size() && begins_name(value[behind])) prefixes_.emplace(name, attribute.written);
    }
  }

  /// A path that is put under a name that others are appended to.
  void check_prefix(const KnownCommand& command) {
    for (const KnownAttribute& name : command.attributes) {
      if (name.schema->form != Form::either_name || name.schema->access != host::Access::writes) continue;
      const script::PlainAttribute* const text = command.element->find(name.schema->text_with);
      if (text == nullptr || text->value.find('\\') == std::string::npos || text->value.ends_with('\\') ||
          text->value.ends_with(']')) {
        continue;
      }
      const auto use = prefixes_.find(name.written->value);
      if (use == prefixes_.end()) continue;
      findings_.push_back({text->at, rule::missing_backslash,
                           quoted(text->name) + " does not end in a backslash, and a name is put right behind [" +
                               name.written->value + "] in line " + std::to_string(use->second->at.line)});
    }
  }

  const std::vector<KnownCommand>& commands_;
  std::vector<Finding>& findings_;
  std::unordered_map<std::string_view, const script::PlainAttribute*> prefixes_;
};

}  // namespace

void check_values(const std::vector<KnownCommand>& commands, std::vector<Finding>& findings) {
  ValueRules(commands, findings).run();
}

std::int32_t first_unread(std::span<const std::int32_t> numbers, bool gaps_allowed, std::size_t readable) {
  std::int32_t expected = 1;
  for (const std::int32_t number : numbers) {
    if (gaps_allowed ? static_cast<std::size_t>(number) > readable : number != expected) return number;
    ++expected;
  }
  return 0;
}

}  // namespace check
