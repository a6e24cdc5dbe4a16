#include "tools/ky/graph/words.h"

#include <utility>
#include <vector>

#include "host/script/command_schema.h"
#include "tools/ky/script/resolved_script.h"

namespace graph {

namespace {

using script::PlainAttribute;
using script::PlainElement;

/// What the schema says of an attribute of this element; null for one that every command may have.
const host::AttributeSchema* own_schema(const PlainElement& element, const PlainAttribute& attribute) {
  const host::CommandSchema* const command = host::schema_of(element.name);
  if (command == nullptr) return nullptr;
  for (const host::AttributeSchema& common : host::common_attributes()) {
    if (common.name == attribute.name) return nullptr;
  }
  return host::find_attribute(*command, attribute.name).schema;
}

std::string_view value_of(const PlainElement& element, std::string_view attribute) {
  const PlainAttribute* const found = element.find(attribute);
  return found == nullptr ? std::string_view() : std::string_view(found->value);
}

std::string joined(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.empty() && !path.ends_with('\\')) path += '\\';
  return path += name;
}

std::string registry_path(const PlainElement& element) {
  static constexpr std::pair<std::string_view, std::string_view> short_names[] = {
      {"HKEY_LOCAL_MACHINE", "HKLM"},
      {"HKEY_CURRENT_USER", "HKCU"},
      {"HKEY_CLASSES_ROOT", "HKCR"},
      {"HKEY_USERS", "HKU"},
  };
  std::string_view root = value_of(element, "base");
  for (const auto& [whole, brief] : short_names) {
    if (root == whole) root = brief;
  }
  std::string path = joined(root, value_of(element, "subkey"));
  for (const char* const name : {"value", "valueName"}) {
    if (element.find(name) != nullptr) return path + " : " + std::string(value_of(element, name));
  }
  return path;
}

/// The variable that the command fills; empty for one that fills none.
std::string_view result_of(const PlainElement& element) {
  for (const PlainAttribute& attribute : element.attributes) {
    const host::AttributeSchema* const schema = own_schema(element, attribute);
    if (schema != nullptr && schema->access == host::Access::writes) return attribute.value;
  }
  return {};
}

/// The first attribute that is a text; without one the integers, by name but for a single one that a variable gets.
std::string main_value(const PlainElement& element, bool for_variable) {
  std::vector<const PlainAttribute*> integers;
  for (const PlainAttribute& attribute : element.attributes) {
    const host::AttributeSchema* const schema = own_schema(element, attribute);
    if (schema == nullptr || schema->access != host::Access::none || schema->form == host::Form::flag) continue;
    if (schema->form != host::Form::integer) return attribute.value;
    integers.push_back(&attribute);
  }
  std::string all;
  for (const PlainAttribute* const each : integers) {
    all += (all.empty() ? "" : ", ") + (for_variable && integers.size() == 1 ? "" : each->name + " = ") + each->value;
  }
  return all;
}

}  // namespace

std::string subject_of(const PlainElement& element) {
  if (element.find("subkey") != nullptr) return registry_path(element);
  const std::string result(result_of(element));
  const std::string said = main_value(element, !result.empty());
  if (result.empty()) return said;
  return said.empty() ? result : result + " = " + said;
}

std::string condition_of(const PlainElement& jump) {
  const std::string variable(value_of(jump, "condition"));
  const PlainAttribute* const text = jump.find("strValue");
  const PlainAttribute* const value = jump.find("value");
  if (value != nullptr) {
    // Beside a text to compare with, the variable counts as 0.
    return (text != nullptr ? "0" : variable) + " = " + value->value;
  }
  if (text == nullptr) return variable + " \xE2\x89\xA0 0";
  const auto sensitive = script::whole_integer(value_of(jump, "compareCase"));
  const bool any_case = jump.find("compareCase") != nullptr && sensitive.value_or(0) == 0;
  return variable + " = \"" + text->value + '"' + (any_case ? " in any case" : "");
}

std::string proviso_of(const PlainElement& element) {
  const PlainAttribute* const condition = element.find("execCondition");
  return condition == nullptr ? std::string() : "only if " + condition->value;
}

std::string everything_of(const PlainElement& element, std::int32_t index) {
  std::string all = std::to_string(index) + ' ' + element.name;
  for (const PlainAttribute& attribute : element.attributes) all += '\n' + attribute.name + " = " + attribute.value;
  return all;
}

}  // namespace graph
