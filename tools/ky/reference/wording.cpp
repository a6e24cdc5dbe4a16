#include "tools/ky/reference/wording.h"

#include "ky/factories.h"

namespace reference {

using host::AttributeSchema;
using host::Form;

std::string_view words_of(Form form) {
  switch (form) {
    case Form::integer:
      return "integer";
    case Form::flag:
      return "flag";
    case Form::milliseconds:
      return "milliseconds";
    case Form::index:
      return "index";
    case Form::text:
      return "text";
    case Form::folder_path:
      return "folder";
    case Form::file_path:
      return "file";
    case Form::registry_path:
      return "registry key";
    case Form::xpath:
      return "XPath";
    case Form::expression:
      return "expression";
    case Form::integer_name:
      return "name of an integer";
    case Form::text_name:
      return "name of a text";
    case Form::either_name:
      return "name";
    case Form::integer_or_name:
      return "integer or name";
  }
  return {};
}

std::string_view explained(Form form) {
  switch (form) {
    case Form::integer:
      return "32 bits. `0x` and a leading `0` change the radix as in C; text that is no number would be taken for 0.";
    case Form::flag:
      return "`1` or `0`.";
    case Form::milliseconds:
      return "A whole decimal number, or `INFINITE` in any case for no limit.";
    case Form::index:
      return "The index of a command, or `#` and the id of one; `#end` is the end of the script.";
    case Form::text:
      return "As it stands.";
    case Form::folder_path:
      return "A path of a folder, with a closing backslash, so that names can be appended to it.";
    case Form::file_path:
      return "A path of a file.";
    case Form::registry_path:
      return "A path of a registry key, without its root.";
    case Form::xpath:
      return "XPath 1.0.";
    case Form::expression:
      return "See [Evaluate](Evaluate.md).";
    case Form::integer_name:
      return "The name of an integer variable, without `int_`.";
    case Form::text_name:
      return "The name of a text variable, without `String_`.";
    case Form::either_name:
      return "The name of an integer or of a text variable, without prefix: other attributes tell which.";
    case Form::integer_or_name:
      return "An integer, or the name of an integer variable: another attribute tells which.";
  }
  return {};
}

std::string shown_name(const AttributeSchema& attribute) {
  return std::string(attribute.name) + (attribute.numbered ? "<n>" : "");
}

std::string code(std::string_view text) {
  return '`' + std::string(text) + '`';
}

std::string listed(std::span<const std::string_view> names) {
  std::string all;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) all += i + 1 == names.size() ? " and " : ", ";
    all += code(names[i]);
  }
  return all;
}

std::string whole_meaning(const AttributeSchema& attribute) {
  std::string all(attribute.meaning);
  if (!attribute.choices.empty()) all += " It must be one of " + listed(attribute.choices) + '.';
  if (!attribute.needs.empty()) {
    all += " It does nothing without " + code(std::string(attribute.needs) + (attribute.numbered ? "<n>" : "")) + '.';
  }
  if (attribute.longest > 0) all += " At most " + std::to_string(attribute.longest) + " characters.";
  if (attribute.keeps_expansion) all += " It keeps the expansion of the first run.";
  return all;
}

std::string class_of(const host::CommandSchema& command) {
#define KY_CLASS_OF(stem, type) \
  if (command.name == #stem) return #type;
  KY_FACTORIES(KY_CLASS_OF)
#undef KY_CLASS_OF
  return 'C' + std::string(command.name) + "Command";
}

}  // namespace reference
