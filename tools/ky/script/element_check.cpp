#include "tools/ky/script/element_check.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include "host/script/command_schema.h"
#include "host/script/encipher.h"
#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/script/resolved_script.h"

namespace script {

namespace {

bool is_milliseconds(std::string_view text) {
  if (base::strings::equal_ignoring_case(base::strings::to_wide(text), L"INFINITE")) return true;
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

class ElementCheck {
 public:
  ElementCheck(const PlainElement& element, std::vector<Fault>& faults) : element_(element), faults_(faults) {}

  void run() {
    const host::CommandSchema* const schema = host::schema_of(element_.name);
    if (schema == nullptr) {
      fault(element_.at, rule::unknown_element, "<" + element_.name + "> is not the name of a command");
    }
    for (const PlainAttribute& attribute : element_.attributes) {
      check_length(attribute, host::longest_plain_value, attribute.value.size(), "bytes");
      if (schema != nullptr && attribute.name != id_attribute) check_attribute(*schema, attribute);
    }
    if (schema != nullptr) check_presence(*schema);
  }

 private:
  void fault(Position at, std::string_view rule, std::string reason) {
    faults_.push_back({at, std::move(reason), rule});
  }

  void check_length(const PlainAttribute& attribute, std::size_t longest, std::size_t length, const char* unit) {
    if (length <= longest) return;
    fault(attribute.at, rule::long_value,
          quoted(attribute.name) + " has " + std::to_string(length) + ' ' + unit + ", and a value may have " +
              std::to_string(longest));
  }

  void check_attribute(const host::CommandSchema& command, const PlainAttribute& attribute) {
    const host::AttributeSchema* const schema = host::find_attribute(command, attribute.name).schema;
    if (schema == nullptr) {
      fault(attribute.at, rule::unknown_attribute,
            "<" + element_.name + "> has no attribute " + quoted(attribute.name));
      return;
    }
    if (schema->longest != 0) {
      check_length(attribute, schema->longest, base::strings::to_wide(attribute.value).size(), "characters");
    }
    check_number(*schema, attribute);
    check_choice(*schema, attribute);
  }

  void check_number(const host::AttributeSchema& schema, const PlainAttribute& attribute) {
    const char* must_be = nullptr;
    // `index` is judged with the whole script, like `next` and `target`.
    const bool number = (schema.form == host::Form::integer && attribute.name != "index") ||
                        (schema.form == host::Form::integer_or_name && !is_name_here(element_, schema));
    if (number && !whole_integer(attribute.value).has_value()) must_be = "a number of 32 bits";
    // Commands differ in what they make of other numbers.
    if (schema.form == host::Form::flag && attribute.value != "0" && attribute.value != "1") must_be = "1 or 0";
    if (schema.form == host::Form::milliseconds && !is_milliseconds(attribute.value)) {
      must_be = "a decimal number of milliseconds or INFINITE";
    }
    if (must_be == nullptr) return;
    fault(attribute.at, rule::bad_number,
          quoted(attribute.name) + " is " + quoted(attribute.value) + " and must be " + must_be);
  }

  void check_choice(const host::AttributeSchema& schema, const PlainAttribute& attribute) {
    const auto& choices = schema.choices;
    if (choices.empty() || std::find(choices.begin(), choices.end(), attribute.value) != choices.end()) return;
    if (schema.expanded && attribute.value.find('[') != std::string::npos) return;
    std::string all;
    for (const std::string_view choice : choices) all.append(all.empty() ? "" : ", ").append(choice);
    fault(attribute.at, rule::bad_choice,
          quoted(attribute.name) + " is " + quoted(attribute.value) + " and must be one of " + all);
  }

  void check_presence(const host::CommandSchema& command) {
    std::vector<std::wstring> names;
    for (const PlainAttribute& attribute : element_.attributes) names.push_back(base::strings::to_wide(attribute.name));
    const std::string missing = host::missing_attribute(command, names);
    if (!missing.empty()) fault(element_.at, rule::missing_attribute, "<" + element_.name + "> " + missing);
  }

  const PlainElement& element_;
  std::vector<Fault>& faults_;
};

}  // namespace

void check_element(const PlainElement& element, std::vector<Fault>& faults) {
  ElementCheck(element, faults).run();
}

bool is_name_here(const PlainElement& element, const host::AttributeSchema& schema) {
  const PlainAttribute* const by_name = element.find(schema.name_with);
  return by_name != nullptr && whole_integer(by_name->value).value_or(0) != 0;
}

std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

}  // namespace script
